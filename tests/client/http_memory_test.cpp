// SPDX-License-Identifier: MIT
// HTTPDownloadFile over a network in memory, whose clock tells each wait exactly.
#include <chrono>
#include <vector>

#include "tests/client/HttpDownloadTest.h"
#include "tests/support/MemoryNetwork.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing_support::MemoryLink;
using testing_support::MemoryNetwork;

// Answers every request by `answer`.
class MemoryWeb final : public testing_support::MemoryPeer {
 public:
  using Link = std::shared_ptr<MemoryLink>;

  MemoryLink::State firstState = MemoryLink::State::established;
  std::string answer;
  std::function<void()> onAnswer;
  std::vector<Link> links;

  void connecting(const Link& link, std::uint16_t) override {
    link->state = firstState;
    links.push_back(link);
  }
  void received(const Link& link) override {
    if (!link->toServer.ends_with("\r\n\r\n")) return;
    link->toClient = answer;
    if (onAnswer) onAnswer();
  }
  void left(const Link&) override {}
};

class HttpMemory : public HttpDownloadTest {
 protected:
  static std::string head(std::size_t length) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(length) + "\r\n\r\n";
  }
  std::uint32_t fetch() {
    return client.HTTPDownloadFile("127.0.0.1", "/a", 80, local.c_str(), nullptr, 0, 0);
  }
  void pollBy(std::function<void()> look) {
    client.poll = [look = std::move(look)](auto...) -> QXBool {
      look();
      return 0;
    };
  }
  // The texts of the boxes that a fetch shows which fails.
  std::vector<std::string> failureOfFetch() {
    std::vector<std::string> texts;
    for (const auto& box : boxesOf([&] { EXPECT_EQ(fetch(), 0u); })) texts.push_back(box.text);
    return texts;
  }

  MemoryWeb server;
  MemoryNetwork network{server};
};

const std::vector<std::string> kTimedOut{"The operation timed out"};

// Up to 256 KB used to be held back.
TEST_F(HttpMemory, EveryChunkIsInTheFileWhenOnPollIsAsked) {
  server.answer = head(10'000) + std::string(10'000, 'x');
  std::vector<std::uintmax_t> sizes;
  pollBy([&] { sizes.push_back(std::filesystem::file_size(local)); });
  EXPECT_EQ(fetch(), 1u);
  EXPECT_EQ(sizes, (std::vector<std::uintmax_t>{4096, 8192, 10'000}));
}

TEST_F(HttpMemory, OnPollIsAskedEvery50MillisecondsWhileAServerHoldsBack) {
  server.answer = head(200) + std::string(100, 'x');
  server.onAnswer = [&] {
    network.later(milliseconds(175), [&] { server.links[0]->toClient += std::string(100, 'y'); });
  };
  std::vector<milliseconds> times;
  const auto start = network.now();
  pollBy([&] { times.push_back(std::chrono::duration_cast<milliseconds>(network.now() - start)); });
  EXPECT_EQ(fetch(), 1u);
  EXPECT_EQ(times, (std::vector<milliseconds>{milliseconds(50), milliseconds(100), milliseconds(150),
                                              milliseconds(175)}));
  EXPECT_EQ(content(), std::string(100, 'x') + std::string(100, 'y'));
}

TEST_F(HttpMemory, ABodyThatStaysAwayIsGivenUpAfterItsTimeOut) {
  server.answer = head(200) + std::string(100, 'x');
  int polls = 0;
  pollBy([&] { ++polls; });
  const auto start = network.now();
  EXPECT_EQ(failureOfFetch(), kTimedOut);
  EXPECT_EQ(network.now() - start, internet::Timeouts().data);
  EXPECT_GE(polls, 500);
  EXPECT_EQ(content(), std::string(100, 'x'));
}

TEST_F(HttpMemory, EveryByteOfABodyGivesItsServerTheTimeOutAnew) {
  server.answer = head(4);
  server.onAnswer = [&] {
    for (int i = 0; i < 4; ++i) network.later(seconds(29), [&] { server.links[0]->toClient += 'x'; });
  };
  EXPECT_EQ(fetch(), 1u);
  EXPECT_EQ(content(), "xxxx");
}

// The time-outs of other sessions do not count, nor do their attempts.
TEST_F(HttpMemory, ConnectingIsGivenUpAfter30SecondsAndNotTriedAgain) {
  internet::Timeouts timeouts;
  timeouts.connect = seconds(7);
  timeouts.connectAttempts = 3;
  internet::setTimeoutsForTesting(timeouts);
  server.firstState = MemoryLink::State::connecting;
  const auto start = network.now();
  EXPECT_EQ(failureOfFetch(), kTimedOut);
  EXPECT_EQ(network.now() - start, seconds(30));
  EXPECT_EQ(server.links.size(), 1u);
  EXPECT_FALSE(exists());
}

TEST_F(HttpMemory, AServerThatAnswersNothingIsGivenUpAfterItsTimeOut) {
  const auto start = network.now();
  EXPECT_EQ(failureOfFetch(), kTimedOut);
  EXPECT_EQ(network.now() - start, internet::Timeouts().reply);
  EXPECT_FALSE(exists());
}

}  // namespace
