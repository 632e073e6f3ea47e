// SPDX-License-Identifier: MIT
#include "framework/platform/turns.h"

#include <cstdint>
#include <utility>

#include "framework/platform/message_queue.h"
#include "framework/platform/native_thread.h"

namespace platform {
namespace {

constinit Crowding g_crowding;
constinit bool g_alwaysSleeps = false;
constinit std::chrono::microseconds g_nap = kShortNap;

// Of the waits for a worker alone, which is one of the threads that want a processor.
constinit Crowding g_waits;

bool sleeps(Crowding::Clock::time_point now) noexcept { return g_alwaysSleeps || g_crowding.known(now); }

// Whether another thread has taken the calling one's processor since the last look. The system's answer takes
// as long as a turn, so not each one asks.
bool processorWasTaken() noexcept {
  constexpr unsigned kTurnsBetween = 16;
  static constinit thread_local unsigned t_turns = 0;
  static constinit thread_local std::uint64_t t_taken = 0;
  if (++t_turns % kTurnsBetween != 0) return false;
  const std::uint64_t taken = timesTaken();
  return std::exchange(t_taken, taken) != taken;
}

}  // namespace

bool messageAfterTurn() noexcept {
  const auto before = Crowding::Clock::now();
  if (sleeps(before) || g_waits.known(before)) return napUntilMessage(g_nap) && messageWaiting();
  // The look at the queue counts, too: Wine yields in it.
  const bool waits = messageWaiting();
  if (!waits) yieldOnce();
  const auto now = Crowding::Clock::now();
  g_crowding.yielded(before, now);
  if (processorWasTaken()) g_waits.shared(now);
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
