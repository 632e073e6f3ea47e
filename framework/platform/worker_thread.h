// SPDX-License-Identifier: MIT
// Contract: one worker thread with a stop token of its own, and the kill that leaves the process healthy.
// Ending a thread by force while it holds the heap lock freezes the whole process, so kill() asks first,
// wakes the worker wherever it waits, and only on Windows, as the last resort, ends it by force.
#pragma once

#include <chrono>
#include <memory>

#include "framework/platform/stop_token.h"

namespace platform {

class WorkerThread {
 public:
  using Entry = void (*)(void* argument);

  WorkerThread() noexcept = default;
  ~WorkerThread();  // close(); the thread must have ended or been killed
  WorkerThread(WorkerThread&& other) noexcept;
  WorkerThread& operator=(WorkerThread&& other) noexcept;

  // Starts `entry(argument)` on a new thread (default stack, normal priority) whose StopToken::current() is
  // this object's token. OperationStopped that leaves `entry` ends the thread quietly. False with the
  // thread's last error set when the system gives no thread.
  [[nodiscard]] bool start(Entry entry, void* argument) noexcept;

  [[nodiscard]] bool started() const noexcept;

  // True once the thread has ended (nothing of it runs any more), waiting at most `limit` for it.
  [[nodiscard]] bool ended(std::chrono::milliseconds limit = std::chrono::milliseconds(0)) const noexcept;

  // Sets normal priority (0).
  void setNormalPriority() noexcept;

  // Raises the stop token without waiting. Any thread.
  void requestStop() noexcept;

  // Requests the stop and waits until the thread has ended, calling `whileWaiting(context)` between short
  // waits (the caller's message dispatch). On Windows a thread that has not ended after `bound` is ended by
  // force with exit code 0; on POSIX the wait goes on until it has ended. True when it ended by itself.
  bool kill(std::chrono::milliseconds bound, void (*whileWaiting)(void*) = nullptr,
            void* context = nullptr) noexcept;

  // Releases the handle. Precondition: the thread has ended.
  void close() noexcept;

 private:
  struct Impl;
  std::shared_ptr<Impl> impl_;
};

// Gives the processor to another runnable thread, if there is one; returns at once otherwise.
void yieldProcessor() noexcept;

}  // namespace platform
