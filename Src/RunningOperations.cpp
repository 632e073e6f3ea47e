// SPDX-License-Identifier: MIT
#include "Src/RunningOperations.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "framework/platform/message_queue.h"

namespace {

// How long a worker may take to unwind before it is ended by force where the platform can do that. Far more
// than any of the library's own waits needs; only a host's callback or a dead disk holds a worker that long.
constexpr std::chrono::milliseconds kUnwindBound{5000};

// The operations are linked by their own members: nothing here can fail for want of memory.
struct Registry {
  std::mutex mutex;
  std::condition_variable left;
  RunningOperation* latest = nullptr;
};

Registry& registry() {
  static Registry instance;
  return instance;
}

void dispatchWaitingMessage(void* /*context*/) {
  if (platform::messageWaiting()) platform::takeAndDispatchMessage();
}

}  // namespace

RunningOperation::RunningOperation(TQXIP& client, Kind kind) noexcept : m_client(&client), m_kind(kind) {
  const std::lock_guard lock(registry().mutex);
  m_earlier = std::exchange(registry().latest, this);
}

RunningOperation::~RunningOperation() {
  Kill();
  const std::lock_guard lock(registry().mutex);
  RunningOperation** link = &registry().latest;
  while (*link != this) link = &(*link)->m_earlier;
  *link = m_earlier;
  registry().left.notify_all();
}

bool RunningOperation::Start(platform::WorkerThread::Entry entry, void* argument) noexcept {
  const std::lock_guard lock(registry().mutex);
  return m_worker.start(entry, argument);
}

void RunningOperation::Close() noexcept {
  const std::lock_guard lock(registry().mutex);
  m_worker.close();
}

void RunningOperation::LeaveIfOrphaned() const {
  if (IsOrphaned()) throw platform::OperationStopped();
  platform::throwIfStopped();
}

bool RunningOperation::Runs(const TQXIP& client, Kind kind) noexcept {
  const std::lock_guard lock(registry().mutex);
  for (const RunningOperation* operation = registry().latest; operation != nullptr;
       operation = operation->m_earlier) {
    if (operation->m_client == &client && operation->m_kind == kind && !operation->IsOrphaned()) return true;
  }
  return false;
}

void RunningOperation::Kill() noexcept {
  if (!m_worker.started()) return;
  m_worker.kill(kUnwindBound, &dispatchWaitingMessage);
  Close();
}

// With the registry locked.
bool RunningOperation::IsUsedByAnotherThread(const TQXIP& client) noexcept {
  const std::thread::id self = std::this_thread::get_id();
  for (const RunningOperation* operation = registry().latest; operation != nullptr;
       operation = operation->m_earlier) {
    if (operation->m_client == &client && operation->m_owner != self) return true;
  }
  return false;
}

void RunningOperation::Abandon(TQXIP& client) noexcept {
  const std::thread::id self = std::this_thread::get_id();
  RunningOperation* below = nullptr;  // on this thread's own stack: they cannot run before we return
  std::unique_lock lock(registry().mutex);
  for (RunningOperation* operation = registry().latest; operation != nullptr;
       operation = operation->m_earlier) {
    if (operation->m_client != &client) continue;
    operation->m_orphaned.store(true, std::memory_order_release);
    operation->m_worker.requestStop();
    if (operation->m_owner == self) operation->m_later = std::exchange(below, operation);
  }
  lock.unlock();
  for (; below != nullptr; below = below->m_later) below->Kill();
  // A client freed by one of its own workers cannot wait for the operation that waits for that worker.
  if (platform::StopToken::current() != nullptr) return;
  lock.lock();
  registry().left.wait(lock, [&] { return !IsUsedByAnotherThread(client); });
}
