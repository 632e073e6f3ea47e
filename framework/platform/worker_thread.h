// SPDX-License-Identifier: MIT
// Contract: one worker thread with a stop token of its own, and the kill that leaves the process healthy.
// Ending a thread by force while it holds the heap lock freezes the whole process, so kill() asks first,
// wakes the worker wherever it waits, and only on Windows, as the last resort, ends it by force.
#pragma once

#include <chrono>
#include <memory>

#include "framework/platform/stop_token.h"
#include "framework/platform/turns.h"

namespace platform {

class WorkerThread {
 public:
  using Entry = void (*)(void* argument);

  WorkerThread() noexcept = default;
  ~WorkerThread();  // close()
  WorkerThread(WorkerThread&& other) noexcept;
  WorkerThread& operator=(WorkerThread&& other) noexcept;  // close() first

  // Starts `entry(argument)` on a new thread (default stack and priority) whose StopToken::current() is this
  // object's token. OperationStopped that leaves `entry` ends the thread quietly. So does any other
  // exception: the process must not die of it, so whoever waits must be ready for a thread that ended without
  // a result. False with the thread's last error set when the system gives no thread, or while the last one
  // still runs.
  [[nodiscard]] bool start(Entry entry, void* argument) noexcept;

  [[nodiscard]] bool started() const noexcept;

  // True once the thread has ended (nothing of it runs any more, its thread-local destructors included),
  // waiting at most `limit` for it. Also true when none was started. Any thread, as below.
  [[nodiscard]] bool ended(std::chrono::milliseconds limit = std::chrono::milliseconds(0)) const noexcept;

  // True on a thread that one of these objects started.
  [[nodiscard]] static bool isCurrent() noexcept;

  // Sets normal priority (0).
  void setNormalPriority() noexcept;

  // Raises the stop token without waiting. Any thread, at any time but during start, close, a move or the
  // destructor.
  void requestStop() noexcept;

  // Requests the stop and waits until the thread has ended, calling `whileWaiting(context)` between short
  // waits (the caller's message dispatch), on Windows also whenever a message arrives. On Windows a thread
  // that has not ended after `bound` is ended by force with exit code 0, unless it has not reached `entry`
  // yet (it may hold the loader's lock then, and hangs nowhere); on POSIX the wait goes on until it
  // has ended. True when it ended by itself. `whileWaiting` may enter this object again, close and destroy
  // it. What it throws is dropped: the worker must be gone before anything unwinds that it works on.
  bool kill(std::chrono::milliseconds bound, void (*whileWaiting)(void*) = nullptr,
            void* context = nullptr) noexcept;

  // Releases the thread. REQUIRES: it has ended. One that has not is asked to stop and waited for.
  void close() noexcept;

 private:
  struct Impl;
  std::shared_ptr<Impl> impl_;
};

}  // namespace platform
