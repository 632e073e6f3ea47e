// SPDX-License-Identifier: MIT
// A test on the runner: one client, its script, and messages for the calling thread.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>

#include "tests/storm/Mailbox.h"
#include "tests/storm/TestClient.h"

namespace storm {

class RunnerTest : public testing::Test {
 protected:
  void TearDown() override {
    dispatchAll();
    client.reset();
    EXPECT_EQ(running, 0) << "a worker was left behind";
  }

  // A body that never ends by itself.
  AttemptOutcome Hang() {
    const Presence presence(running);
    entered = true;
    platform::stoppableSleep(std::chrono::hours(1));
    return {.ok = true};
  }

  // For a body that notices the stop but does not leave at once.
  void AwaitStop() {
    entered = true;
    while (!platform::stopRequested()) platform::yieldProcessor();
  }

  // An OnPoll that cancels as soon as the worker is in its body.
  bool CancelOnceEntered() const { return entered; }

  QXErrorInfo error{};
  std::atomic<int> running{0};
  std::atomic<bool> entered{false};
  Script script{.attempt = [this](QXFtpThread&) { return Hang(); }};
  Mailbox mailbox;
  Client client = makeClient(script, &error);
};

}  // namespace storm
