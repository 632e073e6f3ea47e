// SPDX-License-Identifier: MIT
// QXClientHooks: a client with a table of its own.
#include <memory>
#include <string>
#include <vector>

#include "QXHooks.h"
#include "tests/dll/library.h"

namespace {

using Calls = std::vector<std::string>;

QXBool noteBefore(TQXIPIFInt* client) {
  QXClientHooks::ContextOf<Calls>(client).emplace_back("before");
  return 1;
}

void noteConnect(TQXIPIFInt* client) {
  QXHooksOf(client)->pOriginal->OnConnect(client);
  QXClientHooks::ContextOf<Calls>(client).push_back("connected " + std::to_string(client->m_bConnected));
}

// Drops the last reference, and is gone.
void freeIt(TQXIPIFInt* client) {
  QXClientHooks::ContextOf<Calls>(client).emplace_back("freed");
  library().free(client);
}

QXBool freeItFirst(TQXIPIFInt* client) {
  freeIt(client);
  return 1;
}

class Hooks : public ClientTest {
 protected:
  Calls calls;
};

TEST_F(Hooks, BelongToOneClient) {
  const Client other = makeClient(library(), nullptr);
  Calls callsOfOther;
  QXClientHooks hooks(client.get(), &calls);
  QXClientHooks hooksOfOther(other.get(), &callsOfOther);
  hooks->OnBeforeDisconnect = &noteBefore;
  other->FTPDisconnect();
  EXPECT_EQ(calls, Calls{});
  hooksOfOther->OnBeforeDisconnect = &noteBefore;
  other->FTPDisconnect();
  other->FTPDisconnect();
  client->FTPDisconnect();
  EXPECT_EQ(calls, Calls{"before"});
  EXPECT_EQ(callsOfOther, (Calls{"before", "before"}));
}

TEST_F(Hooks, CallTheOriginal) {
  QXClientHooks hooks(client.get(), &calls);
  hooks->OnConnect = &noteConnect;
  client->OnConnect();
  EXPECT_EQ(calls, Calls{"connected 1"});
  EXPECT_NE(hooks.Original().OnConnect, &noteConnect);
}

TEST_F(Hooks, AreRemovedAgain) {
  const QXClientTable* const own = QXTableOf(client.get());
  {
    QXClientHooks hooks(client.get(), &calls);
    hooks->OnBeforeDisconnect = &noteBefore;
    EXPECT_NE(QXTableOf(client.get()), own);
  }
  EXPECT_EQ(QXTableOf(client.get()), own);
  client->FTPDisconnect();
  EXPECT_EQ(calls, Calls{});
}

// A slot that is as it was may be repeated within the library; what lies in front of a table of C++ is copied
// too, for whoever asks the object for its type.
TEST_F(Hooks, LeaveTheRestOfTheTableAlone) {
  QXClientHooks hooks(client.get());
  const auto* const entries = reinterpret_cast<const void* const*>(QXTableOf(client.get()));
  const auto* const original = reinterpret_cast<const void* const*>(&hooks.Original());
  for (int slot = -2; slot < QX_SLOT_COUNT; ++slot) {
    EXPECT_EQ(entries[slot] == original[slot], slot != QX_SLOT_DESTRUCTOR) << slot;
  }
}

TEST_F(Hooks, AreCalledWhileTheClientEnds) {
  QXClientHooks hooks(client.get(), &calls);
  hooks->OnBeforeDisconnect = &noteBefore;
  EXPECT_FALSE(hooks.ClientEnded());
  client.reset();
  EXPECT_TRUE(hooks.ClientEnded());
  EXPECT_EQ(calls, Calls{"before"});
}

TEST_F(Hooks, MayFreeTheirClient) {
  QXClientHooks hooks(client.get(), &calls);
  hooks->OnBeforeDisconnect = &freeItFirst;
  TQXIPIFInt* const freed = client.release();
  EXPECT_EQ(freed->FTPDisconnect(), 0) << "the operation that called the hook is stopped";
  EXPECT_EQ(calls.front(), "freed");
  EXPECT_TRUE(hooks.ClientEnded());
  EXPECT_EQ(moduleCount(), 0U);
}

TEST_F(Hooks, OfASecondCopyAreTheLatest) {
  QXClientHooks hooks(client.get(), &calls);
  hooks->OnBeforeDisconnect = &noteBefore;
  Calls callsOfSecond;
  {
    QXClientHooks second(client.get(), &callsOfSecond);
    EXPECT_EQ(&QXClientHooks::ContextOf<Calls>(client.get()), &callsOfSecond);
    client->FTPDisconnect();
    EXPECT_EQ(callsOfSecond, Calls{"before"}) << "which the first copy's function asks for its data, too";
  }
  EXPECT_EQ(&QXClientHooks::ContextOf<Calls>(client.get()), &calls);
}

TEST_F(Hooks, MayGoWhenTheirClientHasGone) {
  auto hooks = std::make_unique<QXClientHooks>(client.get(), &calls);
  (*hooks)->OnBeforeDisconnect = &noteBefore;
  client.reset();
  hooks.reset();
  EXPECT_EQ(calls, Calls{"before"});
}

void* endAsTheHostLikes(TQXIPIFInt* client, std::uint32_t flags) {
  QXHooks* const hooks = QXHooksOf(client);
  hooks->bEnded = 1;
  QXClientHooks::ContextOf<Calls>(client).emplace_back("ended");
  return hooks->pOriginal->DeletingDestructor(client, flags);
}

TEST_F(Hooks, OfTheEndAreTheHostsAsWell) {
  QXClientHooks hooks(client.get(), &calls);
  hooks->DeletingDestructor = &endAsTheHostLikes;
  client.reset();
  EXPECT_TRUE(hooks.ClientEnded());
  EXPECT_EQ(calls, Calls{"ended"});
  EXPECT_EQ(moduleCount(), 0U);
}

}  // namespace
