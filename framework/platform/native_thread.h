// SPDX-License-Identifier: MIT
// Contract: the system's thread below WorkerThread. What both systems have in common (the stop token, the
// kill) is in platform/worker_thread.cpp.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

namespace platform {

class NativeThread {
 public:
  using Entry = void (*)(void* argument);

  // How long a wait that has to look at messages lasts at most; where they end the wait it may be longer.
  static const std::chrono::milliseconds kSlice;

  NativeThread() noexcept;
  ~NativeThread();  // REQUIRES: never started, or ended
  NativeThread(const NativeThread&) = delete;
  NativeThread& operator=(const NativeThread&) = delete;

  // Runs `entry(argument)`: default stack and priority, at once. Whatever exception leaves `entry` ends the
  // thread and nothing else. False with the last error set when the system gives no thread. REQUIRES: not
  // started yet.
  [[nodiscard]] bool start(Entry entry, void* argument) noexcept;

  // True once nothing of the thread runs any more, its thread-local destructors included. Waits at most
  // `limit`; with `wakeForMessages` a message that waits for the calling thread ends the wait, on Windows.
  // Any number of threads may wait. REQUIRES: started.
  [[nodiscard]] bool wait(std::chrono::milliseconds limit, bool wakeForMessages = false) noexcept;

  void setNormalPriority() noexcept;

  // Ends the thread wherever it is, with exit code 0. False where the system has no such thing (POSIX) or
  // refuses. wait() tells when it is gone.
  bool endByForce() noexcept;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// Lets the next runnable thread have the processor; returns at once when there is none.
void yieldOnce() noexcept;

// How often the calling thread has had to leave its processor to another one, or has left it by yieldOnce();
// constant where the system does not tell.
[[nodiscard]] std::uint64_t timesTaken() noexcept;

inline constexpr std::chrono::microseconds kShortNap{50};

// A sleep of that length, or of the system's next longer one: a millisecond on Windows.
void nap(std::chrono::microseconds length) noexcept;

// The same. False when no message waits for the calling thread, true when one may.
[[nodiscard]] bool napUntilMessage(std::chrono::microseconds length) noexcept;

}  // namespace platform
