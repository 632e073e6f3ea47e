// SPDX-License-Identifier: MIT
// Ctrl-C and what it ends, at servers that keep silent.
#include "hosts/shared/EndableClient.h"

#include <chrono>
#include <functional>
#include <future>
#include <thread>

#include "hosts/shared/Interrupt.h"
#include "hosts/shared/Transfers.h"
#include "tests/hosts/shared/AtServer.h"

namespace hosts {
namespace {

// Every time-out of the library is longer.
constexpr std::chrono::seconds kBeforeTimeouts{20};

class EndableClients : public testing::Test {
 protected:
  ~EndableClients() override { forgetInterrupt(); }

  void make(EndableClient& made) {
    ASSERT_TRUE(made.make(builtLibrary(), {}));
    ASSERT_TRUE(made.client().setLogin(login()));
  }
  [[nodiscard]] qx::Login login() const { return {.host = "127.0.0.1", .port = server.port()}; }

  // What `operation` answers when there is an interrupt as soon as the server is silent.
  template <typename Operation>
  auto interrupted(const std::string& verb, const Operation& operation) {
    server.reconfigure(R"({"rules": [{"on": ")" + verb + R"(", "do": [{"gate": "never"}]}]})");
    const auto begin = std::chrono::steady_clock::now();
    std::thread user([this] {
      server.waitAtGate("never");
      interrupt();
    });
    auto answer = operation();
    user.join();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kBeforeTimeouts) << verb;
    return answer;
  }

  const fixture::ScriptedFtp server{R"({"features": ["utf8", "epsv", "size"], "tree": {"/sub/": {}}})"};
  const testing_support::ScratchFolder scratch;
  EndableClient client;
};

struct SilentAt {
  const char* verb;
  std::function<bool(qx::Client&)> succeeds;
};

class SilentServers : public EndableClients, public testing::WithParamInterface<SilentAt> {};

// Such a program ended when the server's time was over, half a minute later.
TEST_P(SilentServers, AreLeftBehindAnInterrupt) {
  make(client);
  const OnInterrupt onInterrupt([this] { client.end(); });
  const auto [verb, succeeds] = GetParam();
  EXPECT_FALSE(interrupted(verb, [&, asks = succeeds] { return asks(client.client()); }));
  EXPECT_FALSE(client.isThere());
  server.waitUntilAllClosed();
}

INSTANTIATE_TEST_SUITE_P(
    Operations, SilentServers,
    testing::Values(
        SilentAt{"CONNECT", [](qx::Client& client) { return static_cast<bool>(client.list("/")); }},
        SilentAt{"PASS", [](qx::Client& client) { return static_cast<bool>(client.list("/")); }},
        SilentAt{"LIST", [](qx::Client& client) { return static_cast<bool>(client.list("/")); }},
        SilentAt{"SIZE", [](qx::Client& client) { return static_cast<bool>(client.fileExists("/a")); }},
        SilentAt{"RMD",
                 [](qx::Client& client) { return static_cast<bool>(client.removeDirectory("/sub")); }}),
    [](const auto& silent) { return std::string(silent.param.verb); });

// A thread had one client that could be ended, the one that was made last.
TEST_F(EndableClients, AreSeveralOnAThread) {
  EndableClient second;
  make(client);
  make(second);
  const OnInterrupt onInterrupt([&] {
    client.end();
    second.end();
  });
  EXPECT_FALSE(interrupted("LIST", [&] { return client.client().list("/"); }));
  EXPECT_FALSE(client.isThere());
  EXPECT_TRUE(second.isThere());
}

// The question that was not asked any more had the answer "no".
TEST_F(EndableClients, AnswerNoQuestionBehindTheirEnd) {
  make(client);
  ASSERT_TRUE(client.client().fileExists("/none"));
  client.end();
  EXPECT_FALSE(client.client().fileExists("/none"));
  EXPECT_FALSE(client.isThere());
}

TEST_F(EndableClients, WorkAgainWhenTheyAreMadeAnew) {
  make(client);
  client.end();
  EXPECT_FALSE(client.client().list("/"));
  client.rearm();
  make(client);
  EXPECT_TRUE(client.client().list("/"));
}

// The words about what is left were lost with the client.
TEST_F(EndableClients, TellWhatAnUploadMayHaveLeftWhenItsLastQuestionIsCancelled) {
  make(client);
  const std::filesystem::path file = scratch.path() / "file";
  std::ofstream(file) << "content";
  const OnInterrupt onInterrupt([this] { client.end(); });
  const Outcome outcome = interrupted("SIZE", [&] { return upload(client.client(), file, "/file"); });
  EXPECT_EQ(outcome.state, Outcome::State::cancelled);
  EXPECT_EQ(outcome.text, "cancelled; a part of it may be on the server as /file");
}

TEST_F(EndableClients, AreEndedAtOnceWhereTheInterruptWasBefore) {
  interrupt();
  std::promise<void> ended;
  const OnInterrupt onInterrupt([&] { ended.set_value(); });
  ended.get_future().wait();
}

TEST(WithoutAnInterrupt, NothingIsEnded) {
  bool acts = false;
  {
    const OnInterrupt onInterrupt([&] { acts = true; });
  }
  EXPECT_FALSE(acts);
}

}  // namespace
}  // namespace hosts
