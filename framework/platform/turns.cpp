// SPDX-License-Identifier: MIT
#include "framework/platform/turns.h"

#include "framework/platform/message_queue.h"
#include "framework/platform/native_thread.h"

namespace platform {
namespace {

constinit Crowding g_crowding;

}  // namespace

bool messageAfterTurn() noexcept {
  const auto before = Crowding::Clock::now();
  if (g_crowding.known(before)) return napUntilMessage() && messageWaiting();
  // The look at the queue counts, too: Wine yields in it.
  const bool waits = messageWaiting();
  if (!waits) yieldOnce();
  g_crowding.yielded(before, Crowding::Clock::now());
  return waits;
}

void yieldProcessor() noexcept {
  const auto before = Crowding::Clock::now();
  if (g_crowding.known(before)) {
    nap();
  } else {
    yieldOnce();
    g_crowding.yielded(before, Crowding::Clock::now());
  }
}

}  // namespace platform
