// SPDX-License-Identifier: MIT
// How a loop that polls gets its turns on a crowded machine. Whoever gives the processor up goes to the end
// of the queue: each turn then costs the time slices of all the others, and a caller, its worker and that
// one's own worker wait for one another's turns. A thread that has slept for a moment is served before them.
// Of a processor that others want only now and then, a loop without end takes what they wait for.
#pragma once

#include <atomic>
#include <chrono>

namespace platform {

class Crowding {
 public:
  using Clock = std::chrono::steady_clock;

  // True while a sleep is the better way to give the processor up.
  [[nodiscard]] bool known(Clock::time_point now) const noexcept {
    return now.time_since_epoch().count() < until_.load(std::memory_order_relaxed);
  }

  // Another thread has had the processor meanwhile, be it for less than a slice.
  void shared(Clock::time_point now) noexcept {
    until_.store((now + kSharedFor).time_since_epoch().count(), std::memory_order_relaxed);
  }

  // Giving the processor up took from `before` to `now`.
  void yielded(Clock::time_point before, Clock::time_point now) noexcept {
    if (now - before < kSlice) return;
    until_.store((now + kPatience * (now - before)).time_since_epoch().count(), std::memory_order_relaxed);
  }

 private:
  // Nobody but a thread that computes keeps the processor that long.
  static constexpr std::chrono::milliseconds kSlice{1};
  // Threads that serve one another's data come and go in tenths of a millisecond.
  static constexpr std::chrono::milliseconds kSharedFor{20};
  // So many times what it has cost passes until it is tried again: a tenth of the time is lost at most.
  static constexpr int kPatience = 10;

  std::atomic<Clock::rep> until_{Clock::time_point::min().time_since_epoch().count()};
};

// One turn: true when a message waits for the calling thread, else false after giving the processor up. On a
// crowded machine, or where another thread has just had the processor, it first waits for a message, a
// millisecond at most.
[[nodiscard]] bool messageAfterTurn() noexcept;

// The same for a loop that has no messages: gives the processor to another runnable thread, if there is one,
// and returns at once otherwise.
void yieldProcessor() noexcept;

// From now on each turn of this process is one of a crowded machine and sleeps for that long. A loop that
// waits, as the caller of an operation does, keeps a processor busy; tests that run side by side need them.
// 0 ends that. Call while no other thread takes a turn.
void sleepInTurnsForTesting(std::chrono::microseconds length) noexcept;

}  // namespace platform
