// SPDX-License-Identifier: MIT
// For operations that work on the caller's thread in one go.
#pragma once

#include <gtest/gtest.h>

#include "support/Messages.h"
#include "tests/client/RecordingClient.h"
#include "tests/unit/TestQueue.h"

// `work` neither asks OnPoll nor dispatches the caller's messages.
template <typename Work>
void expectNoTurns(RecordingClient& client, Work&& work) {
  bool working = true;
  bool dispatched = false;
  TestQueue queue([&](unsigned) {
    EXPECT_FALSE(working) << "a message was dispatched";
    dispatched = true;
  });
  client.poll = [](QXHostValue, QXHostValue, QXHostValue, QXBool*) -> QXBool {
    ADD_FAILURE() << "OnPoll was asked";
    return 1;
  };
  queue.post(1);
  work();
  working = false;
  PumpMessages(nullptr, 0, 0);
  EXPECT_TRUE(dispatched) << "the message waited";
  client.poll = nullptr;
}
