// SPDX-License-Identifier: MIT
// The exported functions: creation, freeing and the module-wide count.
#include <thread>
#include <vector>

#include "QXHooks.h"
#include "tests/dll/library.h"

namespace {

class Exports : public LibraryTest {};

TEST_F(Exports, ReleaseAtZeroAnswersZeroAndStays) {
  EXPECT_EQ(library().release(), 0U);
  EXPECT_EQ(library().release(), 0U);
  EXPECT_EQ(library().addRef(), 1U);
  EXPECT_EQ(library().release(), 0U);
}

TEST_F(Exports, TwoReferencesAfterOneCreationMakeThree) {
  {
    const Client client = makeClient(library(), nullptr);
    EXPECT_EQ(library().addRef(), 2U);
    EXPECT_EQ(library().addRef(), 3U);
    EXPECT_EQ(library().release(), 2U);
    EXPECT_EQ(library().release(), 1U);
  }
  EXPECT_EQ(moduleCount(), 0U);
}

TEST_F(Exports, EachClientCountsUntilItsEnd) {
  Client first = makeClient(library(), nullptr);
  const Client second = makeClient(library(), nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(moduleCount(), 2U);
  first.reset();
  EXPECT_EQ(moduleCount(), 1U);
}

TEST_F(Exports, AHostThatReleasesTooOftenOnlyLosesTheCount) {
  {
    const Client client = makeClient(library(), nullptr);
    EXPECT_EQ(library().release(), 0U);
    EXPECT_EQ(library().release(), 0U);
  }
  EXPECT_EQ(moduleCount(), 0U);
}

TEST_F(Exports, FreeingNullAnswersFalse) { EXPECT_EQ(library().free(nullptr), 0); }

TEST_F(Exports, FreeingAnObjectWithARaisedCountLeavesItAlive) {
  TQXIPIFInt* const client = library().create(nullptr);
  ASSERT_NE(client, nullptr);
  EXPECT_EQ(client->AddRef(), 2U);
  EXPECT_EQ(library().free(client), 1);
  EXPECT_EQ(moduleCount(), 1U);
  EXPECT_EQ(client->m_nRefCount, 1U);
  EXPECT_EQ(client->FTPSetLogin("still.alive.test", "", "", 21, 0), 1);
  EXPECT_STREQ(client->m_RemoteSystem, "still.alive.test");
  EXPECT_EQ(library().free(client), 1);
  EXPECT_EQ(moduleCount(), 0U);
}

TEST_F(Exports, ConnectingNullAnswersFalse) {
  EXPECT_EQ(library().connect(nullptr, "127.0.0.1", "user", "password", 21, 1, 0, nullptr), 0);
}

// What slot 26 was called with, and its answer.
struct ConnectCall {
  static QXBool take(TQXIPIFInt* client, const char* host, const char* user, const char* password,
                     std::uint32_t port, QXBool passive, std::uint32_t value, TInternetSession* session) {
    latest = {client, host, user, password, port, passive, value, session};
    return 0x5A;
  }

  TQXIPIFInt* client;
  const char* host;
  const char* user;
  const char* password;
  std::uint32_t port;
  QXBool passive;
  std::uint32_t value;
  TInternetSession* session;
  static ConnectCall latest;
};
ConnectCall ConnectCall::latest{};

TEST_F(Exports, ConnectingHandsAllArgumentsToSlot26) {
  const Client client = makeClient(library(), nullptr);
  QXClientHooks hooks(client.get());
  hooks->FTPConnect = &ConnectCall::take;
  auto* const session = reinterpret_cast<TInternetSession*>(&hooks);
  const char host[] = "host", user[] = "user", password[] = "password";

  EXPECT_EQ(library().connect(client.get(), host, user, password, 0xFEDCBA98, 0xA5, 0x89ABCDEF, session),
            0x5A);

  const ConnectCall& call = ConnectCall::latest;
  EXPECT_EQ(call.client, client.get());
  EXPECT_EQ(call.host, host);
  EXPECT_EQ(call.user, user);
  EXPECT_EQ(call.password, password);
  EXPECT_EQ(call.port, 0xFEDCBA98U);
  EXPECT_EQ(call.passive, 0xA5);
  EXPECT_EQ(call.value, 0x89ABCDEFU);
  EXPECT_EQ(call.session, session);
}

TEST_F(Exports, TheCountBelongsToAllThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int round = 0; round < 1000; ++round) {
        library().addRef();
        library().free(library().create(nullptr));
        library().release();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(moduleCount(), 0U);
}

}  // namespace
