// SPDX-License-Identifier: MIT
#include "Src/RunningOperations.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "framework/platform/last_error.h"
#include "framework/platform/message_queue.h"

namespace {

// How long a worker may take to unwind before it is ended by force where the platform can do that. Far more
// than any of the library's own waits needs; only a host's callback or a dead disk holds a worker that long.
constexpr std::chrono::milliseconds kUnwindBound{5000};
// The same for the worker of a worker: whoever waits for it must not be the first whose patience ends.
constexpr std::chrono::milliseconds kNestedUnwindBound{2500};

// The operations are linked by their own members: nothing here can fail for want of memory. Those of a worker
// hang below the operation whose worker it is, and go with it: the stack of a worker that was ended by force
// holds none any more.
struct Registry {
  std::mutex mutex;
  std::condition_variable left;
  RunningOperation* latest = nullptr;  // of the threads of hosts
};

Registry& registry() {
  static Registry instance;
  return instance;
}

constinit thread_local RunningOperation* t_workerOf = nullptr;

void dispatchWaitingMessage() {
  if (platform::messageWaiting()) platform::takeAndDispatchMessage();
}

}  // namespace

template <typename Visit>
void RunningOperation::ForEach(RunningOperation* latest, Visit&& visit) {
  for (RunningOperation* operation = latest; operation != nullptr; operation = operation->m_earlier) {
    visit(*operation);
    ForEach(operation->m_ofWorker, visit);
  }
}

template <typename Visit>
void RunningOperation::ForEachOf(const TQXIP& client, Visit&& visit) {
  ForEach(registry().latest, [&](RunningOperation& operation) {
    if (operation.m_client == &client) visit(operation);
  });
}

RunningOperation::RunningOperation(TQXIP& client, Kind kind, std::uint32_t lastError) noexcept
    : m_client(&client), m_kind(kind) {
  {
    const std::lock_guard lock(registry().mutex);
    if (t_workerOf != nullptr && t_workerOf->m_workerStops) m_token.raise();
    m_list = t_workerOf != nullptr ? &t_workerOf->m_ofWorker : &registry().latest;
    m_earlier = std::exchange(*m_list, this);
  }
  platform::setLastError(lastError);
}

RunningOperation::~RunningOperation() {
  const platform::LastErrorKeeper keeper;
  Kill();
  const std::lock_guard lock(registry().mutex);
  RunningOperation** link = m_list;
  while (*link != this) link = &(*link)->m_earlier;
  *link = m_earlier;
  registry().left.notify_all();
}

bool RunningOperation::Start(platform::WorkerThread::Entry entry, void* argument) noexcept {
  const std::lock_guard lock(registry().mutex);
  m_entry = entry;
  m_argument = argument;
  m_workerInside = !m_token.raised() && m_worker.start(&RunWorker, this);
  return m_workerInside;
}

void RunningOperation::RunWorker(void* operation) {
  struct Presence {
    RunningOperation* self;
    ~Presence() {
      const std::lock_guard lock(registry().mutex);
      self->m_workerInside = false;
      registry().left.notify_all();
    }
  };
  const Presence presence{static_cast<RunningOperation*>(operation)};
  t_workerOf = presence.self;
  presence.self->m_entry(presence.self->m_argument);
}

void RunningOperation::Close() noexcept {
  const std::lock_guard lock(registry().mutex);
  m_worker.close();
  m_workerInside = false;
  m_ofWorker = nullptr;  // of a worker that was ended by force some may be left
  registry().left.notify_all();
}

// With the registry locked.
void RunningOperation::RequestStop() noexcept {
  m_workerStops = true;
  m_worker.requestStop();
  for (RunningOperation* nested = m_ofWorker; nested != nullptr; nested = nested->m_earlier)
    nested->m_token.raise();
}

void RunningOperation::Kill() noexcept {
  if (!m_worker.started()) return;
  {
    const std::lock_guard lock(registry().mutex);
    RequestStop();
  }
  LetGo();
  m_worker.kill(t_workerOf != nullptr ? kNestedUnwindBound : kUnwindBound, &KeepWaiting, nullptr);
  Close();
}

void RunningOperation::KeepWaiting(void* /*context*/) {
  LetGo();
  dispatchWaitingMessage();
}

// The calling thread waits for a worker. If that frees a client, it has to know that nothing below on this
// stack will touch the client: all that leaves by OperationStopped.
void RunningOperation::LetGo() noexcept {
  const std::thread::id self = std::this_thread::get_id();
  const std::lock_guard lock(registry().mutex);
  ForEach(registry().latest, [&](RunningOperation& operation) {
    if (operation.m_orphaned && operation.m_owner == self) operation.m_ownerInside = false;
  });
  if (t_workerOf != nullptr && t_workerOf->m_orphaned) t_workerOf->m_workerInside = false;
  registry().left.notify_all();
}

bool RunningOperation::Runs(const TQXIP& client, Kind kind) noexcept {
  return RunsOr(client, kind, [](const TQXIP&) { return false; });
}

bool RunningOperation::RunsOr(const TQXIP& client, Kind kind, bool (*look)(const TQXIP&)) noexcept {
  const std::lock_guard lock(registry().mutex);
  bool runs = false;
  ForEachOf(client, [&](const RunningOperation& operation) { runs = runs || operation.m_kind == kind; });
  return runs || look(client);
}

// With the registry locked.
bool RunningOperation::MayTouchFromElsewhere() const noexcept {
  return (m_ownerInside && m_owner != std::this_thread::get_id()) || (m_workerInside && this != t_workerOf);
}

void RunningOperation::Abandon(TQXIP& client) noexcept {
  const std::thread::id self = std::this_thread::get_id();
  RunningOperation* below = nullptr;  // on this thread's own stack: they cannot run before we return
  std::unique_lock lock(registry().mutex);
  ForEachOf(client, [&](RunningOperation& operation) {
    operation.m_orphaned = true;
    operation.m_token.raise();
    operation.RequestStop();
    if (operation.m_owner == self) operation.m_later = std::exchange(below, &operation);
  });
  lock.unlock();
  for (; below != nullptr; below = below->m_later) below->Kill();
  lock.lock();
  registry().left.wait(lock, [&] {
    bool used = false;
    ForEachOf(client,
              [&](const RunningOperation& operation) { used = used || operation.MayTouchFromElsewhere(); });
    return !used;
  });
  // Another client may get the memory, and begin operations before these have left.
  ForEachOf(client, [](RunningOperation& operation) { operation.m_client = nullptr; });
}
