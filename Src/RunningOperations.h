// SPDX-License-Identifier: MIT
// The operations that run right now, so that a client may go at any moment. A host may free it in a hook, in
// a message that an operation dispatched, or from another thread. Each operation of the dying client is then
// stopped as a cancelled worker is: its thread's stop token is raised, it leaves by OperationStopped at its
// next step, and touches the client no more. The client goes when nobody is left who might.
// What leaves like that must know of it at once: a call that the host gets goes through HostCall.h.
#pragma once

#include <cstdint>
#include <thread>

#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"
#include "framework/platform/worker_thread.h"

class TQXIP;

class RunningOperation {
 public:
  // What others of the same client have to know of it.
  enum class Kind {
    other,
    connecting,  // it replaces the client's connection
    listing,     // its finder walks over entries
    counting     // it looks at the entries of a listing, which no host gets
  };

  // From now on the calling thread's stop token is this operation's. The last error stays: some operations
  // report the host's.
  explicit RunningOperation(TQXIP& client, Kind kind = Kind::other) noexcept
      : RunningOperation(client, kind, platform::lastError()) {}
  // Whoever leaves without having waited (an exception of the host's message handler) must not leave the
  // worker behind: it uses the record on this stack.
  ~RunningOperation();
  RunningOperation(const RunningOperation&) = delete;
  RunningOperation& operator=(const RunningOperation&) = delete;

  // Start() and Close() alone change what Worker() holds: another thread may reach for it at any moment.
  // An operation that has to stop starts none.
  [[nodiscard]] bool Start(platform::WorkerThread::Entry entry, void* argument) noexcept;
  [[nodiscard]] platform::WorkerThread& Worker() noexcept { return m_worker; }
  // REQUIRES: the worker has ended.
  void Close() noexcept;

  // Asks the worker to stop and waits until it has ended, dispatching messages meanwhile. Does nothing
  // without a running worker.
  void Kill() noexcept;

  // Whether an operation of that kind runs on `client`, on whatever thread.
  [[nodiscard]] static bool Runs(const TQXIP& client, Kind kind) noexcept;
  // The same; where none does, what `look` sees at the client while none can begin.
  [[nodiscard]] static bool RunsOr(const TQXIP& client, Kind kind, bool (*look)(const TQXIP&)) noexcept;

  // Stops every operation of `client`, and waits until no other thread uses it. Call it while the client is
  // still whole. A thread that waits for the calling one, because that is its worker, has let go of the
  // client instead.
  static void Abandon(TQXIP& client) noexcept;

 private:
  RunningOperation(TQXIP& client, Kind kind, std::uint32_t lastError) noexcept;

  // With the registry locked; also those of the workers.
  template <typename Visit>
  static void ForEach(RunningOperation* latest, Visit&& visit);
  template <typename Visit>
  static void ForEachOf(const TQXIP& client, Visit&& visit);

  static void RunWorker(void* operation);
  static void KeepWaiting(void* operation);
  void RequestStop() noexcept;
  static void LetGo() noexcept;
  [[nodiscard]] bool MayTouchFromElsewhere() const noexcept;

  TQXIP* m_client;  // null once that is gone
  const Kind m_kind;
  const std::thread::id m_owner = std::this_thread::get_id();
  platform::StopToken m_token;
  const platform::StopToken::Scope m_scope{&m_token};
  platform::WorkerThread m_worker;
  platform::WorkerThread::Entry m_entry = nullptr;
  void* m_argument = nullptr;

  // Guarded by the registry.
  bool m_ownerInside = true;               // the thread of this operation may still touch the client
  bool m_workerInside = false;             // its worker may
  bool m_workerStops = false;              // has been asked to
  bool m_orphaned = false;                 // the client is going
  RunningOperation** m_list;               // that this one is in: of the threads of hosts, or of one worker
  RunningOperation* m_earlier;             // in that list
  RunningOperation* m_ofWorker = nullptr;  // the latest operation that this one's worker runs
  RunningOperation* m_later = nullptr;     // among those that one call of Abandon ends
};
