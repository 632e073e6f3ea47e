// SPDX-License-Identifier: MIT
#include "framework/platform/worker_thread.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

#include "framework/platform/last_error.h"
#include "framework/platform/native_thread.h"

namespace platform {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constinit thread_local bool t_isWorker = false;

// The kill must be finished whatever the caller's message handlers do.
void callQuietly(void (*function)(void*), void* context) noexcept {
  if (function == nullptr) return;
  try {
    function(context);
  } catch (...) {
  }
}

}  // namespace

struct WorkerThread::Impl {
  Entry entry;
  void* argument;
  StopToken token;
  std::atomic<bool> begun{false};
  NativeThread thread;

  Impl(Entry entryFunction, void* entryArgument) : entry(entryFunction), argument(entryArgument) {}

  // Runs on the new thread. It needs no share of its own in this object: close() waits for it.
  static void run(void* object) {
    auto* self = static_cast<Impl*>(object);
    self->begun.store(true, std::memory_order_relaxed);
    t_isWorker = true;
    const StopToken::Scope scope(&self->token);
    self->entry(self->argument);
  }
};

WorkerThread::~WorkerThread() { close(); }

WorkerThread::WorkerThread(WorkerThread&& other) noexcept : impl_(std::move(other.impl_)) {}

WorkerThread& WorkerThread::operator=(WorkerThread&& other) noexcept {
  if (this != &other) {
    close();
    impl_ = std::move(other.impl_);
  }
  return *this;
}

bool WorkerThread::start(Entry entry, void* argument) noexcept {
  if (!ended()) {
    setLastError(kErrorInvalidParameter);
    return false;
  }
  close();
  try {
    auto impl = std::make_shared<Impl>(entry, argument);
    if (impl->token.nativeHandle() == StopToken::kNoHandle) throw std::bad_alloc();  // nobody could wake it
    if (!impl->thread.start(&Impl::run, impl.get())) return false;
    impl_ = std::move(impl);
    return true;
  } catch (const std::bad_alloc&) {
    setLastError(kErrorNotEnoughMemory);
    return false;
  }
}

bool WorkerThread::started() const noexcept { return impl_ != nullptr; }

bool WorkerThread::ended(milliseconds limit) const noexcept { return !impl_ || impl_->thread.wait(limit); }

bool WorkerThread::isCurrent() noexcept { return t_isWorker; }

void WorkerThread::setNormalPriority() noexcept {
  if (impl_) impl_->thread.setNormalPriority();
}

void WorkerThread::requestStop() noexcept {
  if (impl_) impl_->token.raise();
}

bool WorkerThread::kill(milliseconds bound, void (*whileWaiting)(void*), void* context) noexcept {
  const std::shared_ptr<Impl> impl = impl_;  // a message handler may close or destroy this object meanwhile
  if (!impl) return true;
  impl->token.raise();
  const auto start = steady_clock::now();
  bool forced = false;
  while (!impl->thread.wait(NativeThread::kSlice, whileWaiting != nullptr)) {
    callQuietly(whileWaiting, context);
    // A thread that the system has not let in yet holds the loader's lock, and hangs nowhere.
    const bool late = std::chrono::floor<milliseconds>(steady_clock::now() - start) >= bound;
    if (late && !forced && impl->begun.load(std::memory_order_relaxed)) forced = impl->thread.endByForce();
  }
  return !forced;
}

void WorkerThread::close() noexcept {
  const std::shared_ptr<Impl> impl = std::move(impl_);
  if (!impl || impl->thread.wait(milliseconds(0))) return;
  // The promise was broken that it has ended. It must not outlive what it works on, so ask and wait.
  impl->token.raise();
  while (!impl->thread.wait(std::chrono::minutes(1))) {
  }
}

}  // namespace platform
