// SPDX-License-Identifier: MIT
// Contract: how a worker thread is asked to stop, and how every wait of this library notices it.
// A token belongs to one worker thread. Whoever cancels raises it from another thread; the worker then leaves
// its wait at once by OperationStopped, which unwinds to the worker's frame and frees everything on its way.
// OperationStopped is no internet exception, so no handler of the operations can take it for a failure.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace platform {

struct OperationStopped {};

class StopToken {
 public:
  static constexpr std::intptr_t kNoHandle = -1;

  // Costs nothing of the system's before a wait watches it.
  StopToken() noexcept = default;
  ~StopToken();
  StopToken(const StopToken&) = delete;
  StopToken& operator=(const StopToken&) = delete;

  // May be called from any thread, any number of times.
  void raise() noexcept;
  [[nodiscard]] bool raised() const noexcept { return raised_.load(); }

  // Waits at most `limit` for the token to be raised. True once it is.
  [[nodiscard]] bool wait(std::chrono::milliseconds limit) const noexcept;

  // What a wait watches besides its socket: an event handle on Windows, a readable descriptor on POSIX.
  // Signalled for good once the token is raised. Made when it is asked for first, by any thread; kNoHandle
  // when the system gives none: such a wait notices the raise only at its end.
  [[nodiscard]] std::intptr_t nativeHandle() const noexcept;

  // The token of the calling thread; null on a thread that is no worker of ours.
  static StopToken* current() noexcept;

  // Makes `token` the calling thread's token for a scope. Null is allowed (a scope that cannot be stopped).
  class Scope {
   public:
    explicit Scope(StopToken* token) noexcept;
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    StopToken* previous_;
  };

 private:
  // The system's: kNoHandle when it gives none.
  static std::intptr_t makeHandle() noexcept;
  static void signalHandle(std::intptr_t handle) noexcept;
  static void closeHandle(std::intptr_t handle) noexcept;
  // One wait; it may come back early. REQUIRES: 0 <= limit <= 1 minute.
  static void waitForHandle(std::intptr_t handle, std::chrono::milliseconds limit) noexcept;

  // In one order for all threads: of a raise and the making of a handle at least one sees the other.
  std::atomic<bool> raised_{false};
  mutable std::atomic<std::intptr_t> handle_{kNoHandle};
};

// True when the calling thread has been asked to stop.
[[nodiscard]] bool stopRequested() noexcept;

// Throws OperationStopped when the calling thread has been asked to stop.
void throwIfStopped();

// Sleeps; throws OperationStopped as soon as the calling thread is asked to stop.
void stoppableSleep(std::chrono::milliseconds duration);

}  // namespace platform
