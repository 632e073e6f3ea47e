// SPDX-License-Identifier: MIT
// The last resort: a worker that hangs in a callback of the host and does not listen is ended by force, so
// that its caller is free. A program of its own, because nobody knows what such a worker held.
#include <iostream>
#include <thread>

#include "tests/storm/RunnerTest.h"

namespace storm {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

using LastResort = RunnerTest;

TEST_F(LastResort, FreesTheCallerOfAWorkerThatDoesNotListen) {
  std::atomic<bool> outlived{false};
  script.attempt = [&](QXFtpThread&) {
    entered = true;
    // allowed: sleep_for: a callback of the host that does not look at the stop token
    std::this_thread::sleep_for(30s);
    outlived = true;
    return AttemptOutcome{.ok = true};
  };
  Clock::time_point cancelledAt;
  script.onPoll = [&](QXBool&) {
    cancelledAt = Clock::now();
    return CancelOnceEntered();
  };
  EXPECT_FALSE(client->Run());
  const auto waited = Clock::now() - cancelledAt;
  std::cout << std::chrono::duration<double>(waited).count() << " s until the caller was free\n";
  EXPECT_GE(waited, 5s);
  EXPECT_FALSE(outlived);
  EXPECT_EQ(script.done, std::vector<QXBool>{0});

  script.onPoll = nullptr;
  script.attempt = [](QXFtpThread&) { return AttemptOutcome{.ok = true}; };
  EXPECT_TRUE(client->Run()) << "the client is usable afterwards";
}

// The operation within the worker stayed among those that run: the end of its client waited for it for ever.
TEST_F(LastResort, LeavesNothingOfAnOperationWithinTheWorker) {
  script.attempt = [&](QXFtpThread&) { return AttemptOutcome{.ok = client->FTPHasSubDir("/x", 0) != 0}; };
  script.onGetDirectory = [&](std::uint32_t*) {
    entered = true;
    // allowed: sleep_for: a callback of the host that does not look at the stop token
    std::this_thread::sleep_for(30s);
    return false;
  };
  script.onPoll = [&](QXBool&) { return CancelOnceEntered(); };
  EXPECT_FALSE(client->Run());
  client.reset();

  Script another{.attempt = [](QXFtpThread&) { return AttemptOutcome{.ok = true}; }};
  EXPECT_TRUE(makeClient(another, &error)->Run());
}

}  // namespace
}  // namespace storm
