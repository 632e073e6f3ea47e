// SPDX-License-Identifier: MIT
#include "framework/platform/turns.h"

#include "framework/platform/message_queue.h"
#include "framework/platform/native_thread.h"

namespace platform {
namespace {

constinit Crowding g_crowding;
constinit bool g_alwaysSleeps = false;
constinit std::chrono::microseconds g_nap = kShortNap;

bool sleeps(Crowding::Clock::time_point now) noexcept { return g_alwaysSleeps || g_crowding.known(now); }

}  // namespace

bool messageAfterTurn() noexcept {
  const auto before = Crowding::Clock::now();
  if (sleeps(before)) return napUntilMessage(g_nap) && messageWaiting();
  // The look at the queue counts, too: Wine yields in it.
  const bool waits = messageWaiting();
  if (!waits) yieldOnce();
  g_crowding.yielded(before, Crowding::Clock::now());
  return waits;
}

void yieldProcessor() noexcept {
  const auto before = Crowding::Clock::now();
  if (sleeps(before)) {
    nap(g_nap);
  } else {
    yieldOnce();
    g_crowding.yielded(before, Crowding::Clock::now());
  }
}

void sleepInTurnsForTesting(std::chrono::microseconds length) noexcept {
  g_alwaysSleeps = length > length.zero();
  g_nap = g_alwaysSleeps ? length : kShortNap;
}

}  // namespace platform
