// SPDX-License-Identifier: MIT
// A web server that holds its answer back used to freeze the host: neither OnPoll nor the caller's messages
// had a turn until 4096 bytes were there.
#include <cstdint>
#include <nlohmann/json.hpp>
#include <semaphore>

#include "tests/client/HttpDownloadTest.h"
#include "tests/support/Pattern.h"
#include "tests/unit/TestQueue.h"

namespace {

using namespace nlohmann::literals;

class HttpStall : public HttpDownloadTest {
 protected:
  static constexpr std::uintmax_t kSize = 10'000;
  static constexpr std::uintmax_t kFirst = 100;  // come before the server stalls

  // Far less than a chunk, then nothing until the gate opens.
  const fixture::ScriptedHttp server = answering(
      R"({"body": {"size": 10000, "seed": 3}, "delay_ms": 1, "stall_after": 100, "gate": "gate"})"_json);
};

TEST_F(HttpStall, OnPollIsAskedWhileTheServerHoldsBack) {
  int polls = 0;
  client.poll = [&](auto...) -> QXBool {
    if (++polls == 5) server.release("gate");
    return 0;
  };
  EXPECT_EQ(download(server), 1u);
  EXPECT_GE(polls, 5 + 2) << "and for the chunks behind it";
  EXPECT_TRUE(testing_support::Pattern(3).matchesFile(local, kSize));
}

TEST_F(HttpStall, WhatHasComeIsInTheFileWhenOnPollIsAsked) {
  client.poll = [&](auto...) -> QXBool {
    if (std::filesystem::file_size(local) == kFirst) server.release("gate");
    return 0;
  };
  EXPECT_EQ(download(server), 1u);
  EXPECT_TRUE(testing_support::Pattern(3).matchesFile(local, kSize));
}

TEST_F(HttpStall, ACancelEndsTheCallWhileTheServerStillHoldsBack) {
  int polls = 0;
  client.poll = [&](auto...) -> QXBool { return ++polls == 3; };
  EXPECT_TRUE(boxesOf([&] { EXPECT_EQ(download(server), 0u); }).empty());
  EXPECT_EQ(polls, 3);
  EXPECT_FALSE(exists());
  server.waitFor(R"({"closed": 1})");  // the gate is still shut
}

TEST_F(HttpStall, MessagesAreDispatchedWhileTheServerHoldsBack) {
  TestQueue queue([&](unsigned) { server.release("gate"); });
  queue.post(1);
  EXPECT_EQ(download(server), 1u);
  EXPECT_TRUE(testing_support::Pattern(3).matchesFile(local, kSize));
}

TEST_F(HttpStall, AMessageMayFreeTheClientWhileTheServerHoldsBack) {
  auto own = std::make_unique<RecordingClient>();
  TestQueue queue([&](unsigned) { own.reset(); });
  queue.post(1);
  EXPECT_EQ(own->HTTPDownloadFile("127.0.0.1", "/a", server.port(), local.c_str(), nullptr, 0, 0), 0u);
  EXPECT_EQ(own, nullptr);
  EXPECT_LE(content().size(), kFirst);
  server.waitFor(R"({"closed": 1})");
}

// Waits until the test lets it go on, as a name server does that does not answer.
std::binary_semaphore g_nameServer{0};
std::vector<platform::SocketAddress> lookUpLate(const std::string&, std::uint16_t) {
  g_nameServer.acquire();
  return {};
}

TEST_F(HttpDownloadTest, ACancelEndsTheCallInANameLookup) {
  internet::setResolverForTesting(&lookUpLate);
  client.poll = [](auto...) -> QXBool { return 1; };
  EXPECT_TRUE(boxesOf([&] {
                EXPECT_EQ(client.HTTPDownloadFile("host.test", "/", 80, local.c_str(), nullptr, 0, 0), 0u);
              }).empty());
  g_nameServer.release();
  internet::setResolverForTesting(nullptr);
}

TEST_F(HttpDownloadTest, ACancelEndsTheCallWhileTheServerHoldsTheHeadBack) {
  const auto held = answering(R"({"head_gate": "never"})"_json);
  client.poll = [](auto...) -> QXBool { return 1; };
  EXPECT_TRUE(boxesOf([&] { EXPECT_EQ(download(held), 0u); }).empty());
  EXPECT_FALSE(exists());
  held.waitFor(R"({"closed": 1})");
}

}  // namespace
