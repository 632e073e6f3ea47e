// SPDX-License-Identifier: MIT
// HTTPDownloadFile over a network in memory, whose clock tells each wait exactly.
#include <chrono>
#include <vector>

#include "support/Messages.h"
#include "tests/client/HttpMemoryTest.h"
#include "tests/unit/TestQueue.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

using HttpMemory = HttpMemoryTest;

const std::vector<std::string> kTimedOut{"The operation timed out"};

// Up to 256 KB used to be held back.
TEST_F(HttpMemory, EveryChunkIsInTheFileWhenOnPollIsAsked) {
  server.answer = head(10'000) + std::string(10'000, 'x');
  std::vector<std::uintmax_t> sizes;
  pollBy([&] { sizes.push_back(std::filesystem::file_size(local)); });
  EXPECT_EQ(fetch(), 1u);
  EXPECT_EQ(sizes, (std::vector<std::uintmax_t>{4096, 8192, 10'000}));
}

// Where OnPoll is the library's own, chunks are collected.
TEST_F(HttpMemory, EveryChunkIsInTheFileWhenAMessageIsDispatched) {
  server.answer = head(10'000) + std::string(10'000, 'x');
  std::vector<std::uintmax_t> sizes;
  TestQueue* posted = nullptr;
  TestQueue queue([&](unsigned) {
    sizes.push_back(std::filesystem::file_size(local));
    if (sizes.size() < 2) posted->post(1);
  });
  posted = &queue;
  server.onAnswer = [&] { queue.post(1); };
  EXPECT_EQ(fetchUnasked(), 1u);
  EXPECT_EQ(sizes, (std::vector<std::uintmax_t>{4096, 4096}));
  EXPECT_EQ(content(), std::string(10'000, 'x'));
}

// Each of them had one, which took a hundred times as long as the chunk under Wine.
TEST_F(HttpMemory, ChunksOfOneMillisecondHaveOneLookAtTheQueueWhereNoHostIsAsked) {
  server.answer = head(100'000) + std::string(100'000, 'x');
  server.pieceSize = 4096;
  unsigned pieces = 0;
  unsigned dispatched = 0;
  TestQueue queue([&](unsigned) { ++dispatched; });
  server.onPiece = [&] {
    if (++pieces == 5) queue.post(1);
  };
  EXPECT_EQ(fetchUnasked(), 1u);
  EXPECT_EQ(dispatched, 0u);
  EXPECT_GT(pieces, 5u);
  PumpMessages(nullptr, 0, 0);
  EXPECT_EQ(dispatched, 1u);
}

TEST_F(HttpMemory, EachChunkHasItsLookWhileThereAreMessages) {
  server.answer = head(100'000) + std::string(100'000, 'x');
  unsigned dispatched = 0;
  TestQueue* posted = nullptr;
  TestQueue queue([&](unsigned) {
    if (++dispatched < 24) posted->post(1);
  });
  posted = &queue;
  server.onAnswer = [&] { queue.post(1); };
  EXPECT_EQ(fetchUnasked(), 1u);
  EXPECT_EQ(dispatched, 24u);
}

TEST_F(HttpMemory, AMessageIsDispatchedAMillisecondLaterAtTheLatest) {
  server.answer = head(3 * 4096) + std::string(4096, 'x');
  std::vector<std::uintmax_t> sizes;
  TestQueue queue([&](unsigned) { sizes.push_back(std::filesystem::file_size(local)); });
  const auto sendMore = [&] {
    queue.post(1);
    server.links[0]->toClient += std::string(4096, 'y');
  };
  server.onAnswer = [&] {
    queue.post(1);
    for (int piece = 1; piece < 3; ++piece) network.later(milliseconds(1), sendMore);
  };
  EXPECT_EQ(fetchUnasked(), 1u);
  EXPECT_EQ(sizes, (std::vector<std::uintmax_t>{4096, 8192, 12'288}));
}

TEST_F(HttpMemory, CancelledAfterTheFirstChunkDeletesTheFile) {
  server.answer = head(100'000) + std::string(100'000, 'x');
  for (const bool readOnly : {false, true}) {
    int polls = 0;
    client.poll = [&](auto...) -> QXBool {
      if (readOnly) std::filesystem::permissions(local, kAllWrite, std::filesystem::perm_options::remove);
      EXPECT_TRUE(exists());
      return ++polls == 1;
    };
    EXPECT_EQ(fetch(), 0u);
    EXPECT_EQ(polls, 1);
    EXPECT_FALSE(exists());
  }
}

TEST_F(HttpMemory, CancelledAtTheLastChunkDeletesTheFileAsWell) {
  server.answer = head(8192) + std::string(8192, 'x');
  int polls = 0;
  client.poll = [&](auto...) -> QXBool { return ++polls == 2 ? 7 : 0; };
  EXPECT_EQ(fetch(), 0u);
  EXPECT_EQ(polls, 2);
  EXPECT_FALSE(exists());
}

TEST_F(HttpMemory, DispatchesMessagesBetweenChunks) {
  server.answer = head(12'288) + std::string(12'288, 'x');
  std::string order;
  TestQueue queue([&](unsigned number) { order += std::to_string(number); });
  unsigned polls = 0;
  client.poll = [&](auto...) -> QXBool {
    order += 'p';
    queue.post(++polls);
    return polls == 3;
  };
  EXPECT_EQ(fetch(), 0u);
  EXPECT_EQ(order, "p1p2p") << "none behind the cancel";
  PumpMessages(nullptr, 0, 0);
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
  server.firstState = MemoryWeb::State::connecting;
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
