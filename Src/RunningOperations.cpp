// SPDX-License-Identifier: MIT
#include "Src/RunningOperations.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "framework/platform/message_queue.h"

namespace {

// How long a worker may take to unwind before it is ended by force where the platform can do that. Far more
// than any of the library's own waits needs; only a host's callback or a dead disk holds a worker that long.
constexpr std::chrono::milliseconds kUnwindBound{5000};

struct Registry {
  std::mutex mutex;
  std::condition_variable left;
  std::vector<RunningOperation*> operations;
};

Registry& registry() {
  static Registry instance;
  return instance;
}

void dispatchWaitingMessage(void* /*context*/) {
  if (platform::messageWaiting()) platform::takeAndDispatchMessage();
}

}  // namespace

RunningOperation::RunningOperation(TQXIP& client) : m_client(&client) {
  const std::lock_guard lock(registry().mutex);
  registry().operations.push_back(this);
}

RunningOperation::~RunningOperation() {
  Kill();
  const std::lock_guard lock(registry().mutex);
  std::erase(registry().operations, this);
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

void RunningOperation::Kill() noexcept {
  if (!m_worker.started()) return;
  m_worker.kill(kUnwindBound, &dispatchWaitingMessage);
  Close();
}

void RunningOperation::Abandon(TQXIP& client) noexcept {
  const std::thread::id self = std::this_thread::get_id();
  std::vector<RunningOperation*> below;  // on this thread's own stack: they cannot run before we return
  std::unique_lock lock(registry().mutex);
  for (RunningOperation* operation : registry().operations) {
    if (operation->m_client != &client) continue;
    operation->m_orphaned.store(true, std::memory_order_release);
    operation->m_worker.requestStop();
    if (operation->m_owner == self) below.push_back(operation);
  }
  lock.unlock();
  for (RunningOperation* operation : below) operation->Kill();
  // A client freed by one of its own workers cannot wait for the operation that waits for that worker.
  if (platform::StopToken::current() != nullptr) return;
  lock.lock();
  registry().left.wait(lock, [&] {
    return std::none_of(registry().operations.begin(), registry().operations.end(),
                        [&](RunningOperation* operation) {
                          return operation->m_client == &client && operation->m_owner != self;
                        });
  });
}
