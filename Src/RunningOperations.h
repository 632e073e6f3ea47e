// SPDX-License-Identifier: MIT
// The operations that are waiting for a worker right now. A host may free its client from a message that such
// an operation dispatched, or from another thread; the dying client then ends the workers that use it, and
// the waiting operations learn that their client is gone and touch it no more.
#pragma once

#include <atomic>
#include <thread>

#include "framework/platform/worker_thread.h"

class TQXIP;

class RunningOperation {
 public:
  // What others of the same client have to know of it.
  enum class Kind {
    other,
    listing  // its finder walks over entries
  };

  explicit RunningOperation(TQXIP& client, Kind kind = Kind::other) noexcept;
  // Whoever leaves without having waited (an exception of the host's message handler) must not leave the
  // worker behind: it uses the record on this stack.
  ~RunningOperation();
  RunningOperation(const RunningOperation&) = delete;
  RunningOperation& operator=(const RunningOperation&) = delete;

  // Start() and Close() alone change what Worker() holds: another thread may reach for it at any moment.
  [[nodiscard]] bool Start(platform::WorkerThread::Entry entry, void* argument) noexcept;
  [[nodiscard]] platform::WorkerThread& Worker() noexcept { return m_worker; }
  // REQUIRES: the worker has ended.
  void Close() noexcept;

  // The client has been destroyed.
  [[nodiscard]] bool IsOrphaned() const noexcept { return m_orphaned.load(std::memory_order_acquire); }

  // For operations that call other operations of their client: leaves by OperationStopped when the client is
  // gone or the calling thread has to stop.
  void LeaveIfOrphaned() const;

  // Whether an operation of that kind runs on `client`, on whatever thread.
  [[nodiscard]] static bool Runs(const TQXIP& client, Kind kind) noexcept;

  // Asks the worker to stop and waits until it has ended, dispatching messages meanwhile. Does nothing
  // without a running worker.
  void Kill() noexcept;

  // Ends the workers of every running operation of `client`, and waits until the operations of other threads
  // have left it. Call it while the client is still whole.
  static void Abandon(TQXIP& client) noexcept;

 private:
  [[nodiscard]] static bool IsUsedByAnotherThread(const TQXIP& client) noexcept;

  TQXIP* const m_client;
  const Kind m_kind;
  const std::thread::id m_owner = std::this_thread::get_id();
  platform::WorkerThread m_worker;
  std::atomic<bool> m_orphaned{false};
  RunningOperation* m_earlier = nullptr;  // in the registry
  RunningOperation* m_later = nullptr;    // among those that one call of Abandon ends
};
