// SPDX-License-Identifier: MIT
// A quit message in the host's queue is a message like any other: an operation takes it and goes on.
#include "framework/windows/windows_api.h"
#include "tests/storm/RunnerTest.h"

namespace storm {
namespace {

using QuitMessage = RunnerTest;

TEST_F(QuitMessage, IsTakenAndTheOperationGoesOn) {
  // A turn dispatches one message, and the queue hands out a quit message when nothing else waits.
  std::atomic<int> turns{0};
  script.onPoll = [&](QXBool&) { return ++turns < 0; };
  script.attempt = [&](QXFtpThread&) {
    while (turns < 20) platform::yieldProcessor();
    return AttemptOutcome{.ok = true};
  };
  PostQuitMessage(7);
  EXPECT_TRUE(client->Run());
  MSG message;
  EXPECT_FALSE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE));
}

}  // namespace
}  // namespace storm
