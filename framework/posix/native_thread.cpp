// SPDX-License-Identifier: MIT
#include "framework/platform/native_thread.h"

#include <cxxabi.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <new>
#include <thread>

#include "framework/platform/last_error.h"
#include "framework/platform/worker_thread.h"

namespace platform {

using std::chrono::steady_clock;

struct NativeThread::State {
  // Constant once the thread runs.
  Entry entry;
  void* argument;
  pthread_t id{};

  std::mutex mutex;  // guards what follows, and that the thread is joined once
  std::condition_variable leftEntry;
  bool hasLeftEntry = false;
  bool joined = false;

  State(Entry entryFunction, void* entryArgument) : entry(entryFunction), argument(entryArgument) {}

  static void* run(void* object);
  bool join(std::unique_lock<std::mutex>& lock, steady_clock::time_point deadline) noexcept;
};

namespace {

// The host's signal handlers expect the host's threads: a worker takes only the signals of its own faults,
// and of the real-time ones those that its starter takes. By these the runtimes of Mono and others stop each
// thread that has called the host's code, and wait for it.
class HostSignalsBlocked {
 public:
  HostSignalsBlocked() noexcept {
    pthread_sigmask(SIG_SETMASK, nullptr, &previous_);
    sigset_t blocked;
    sigfillset(&blocked);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS})
      sigdelset(&blocked, fault);
    for (int signal = SIGRTMIN; signal <= SIGRTMAX; ++signal)
      if (sigismember(&previous_, signal) == 0) sigdelset(&blocked, signal);
    pthread_sigmask(SIG_SETMASK, &blocked, nullptr);
  }
  ~HostSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
  HostSignalsBlocked(const HostSignalsBlocked&) = delete;
  HostSignalsBlocked& operator=(const HostSignalsBlocked&) = delete;

 private:
  sigset_t previous_;
};

}  // namespace

// The system's forced unwinding carries no exception object, which the handler's reference would be bound to.
[[gnu::no_sanitize("null")]] void* NativeThread::State::run(void* object) {
  struct TellLeft {
    State* self;
    ~TellLeft() {
      const std::lock_guard lock(self->mutex);
      self->hasLeftEntry = true;
      self->leftEntry.notify_all();
    }
  };
  auto* self = static_cast<State*>(object);
  const TellLeft tellLeft{self};
  try {
    self->entry(self->argument);
  } catch (const abi::__forced_unwind&) {
    throw;  // pthread_exit() in a callback of the host: the system insists on its unwinding
  } catch (...) {
  }
  return nullptr;
}

// After the entry only thread-local destructors and the system's own end remain, microseconds as a rule, so
// asking is enough; the timed joins of the system follow a clock that may be set back.
bool NativeThread::State::join(std::unique_lock<std::mutex>& lock,
                               steady_clock::time_point deadline) noexcept {
  for (int tries = 0; !joined; ++tries) {
    if (pthread_tryjoin_np(id, nullptr) == 0) {
      joined = true;
      break;
    }
    if (steady_clock::now() >= deadline) return false;
    lock.unlock();
    if (tries < 20) {
      yieldProcessor();
    } else {
      nap(kShortNap);  // the thread is past its last instruction of ours, the system tells no event
    }
    lock.lock();
  }
  return true;
}

const std::chrono::milliseconds NativeThread::kSlice{2};

NativeThread::NativeThread() noexcept = default;
NativeThread::~NativeThread() = default;

bool NativeThread::start(Entry entry, void* argument) noexcept {
  std::unique_ptr<State> state(new (std::nothrow) State(entry, argument));
  const HostSignalsBlocked blocked;
  if (!state || pthread_create(&state->id, nullptr, &State::run, state.get()) != 0) {
    setLastError(kErrorNotEnoughMemory);
    return false;
  }
  state_ = std::move(state);
  return true;
}

bool NativeThread::wait(std::chrono::milliseconds limit, bool /*wakeForMessages*/) noexcept {
  using std::chrono::milliseconds;
  limit = std::clamp<milliseconds>(limit, milliseconds(0),
                                   std::chrono::hours(24));  // its sum with now() must fit
  std::unique_lock lock(state_->mutex);
  if (state_->joined) return true;
  if (!state_->hasLeftEntry && limit == milliseconds(0)) return false;
  const auto deadline = steady_clock::now() + limit;
  if (!state_->leftEntry.wait_until(lock, deadline, [this] { return state_->hasLeftEntry; })) return false;
  return state_->join(lock, deadline);
}

void NativeThread::setNormalPriority() noexcept {
  const std::lock_guard lock(state_->mutex);
  if (state_->joined) return;
  const sched_param normal{};
  pthread_setschedparam(state_->id, SCHED_OTHER, &normal);
}

bool NativeThread::endByForce() noexcept { return false; }

void yieldOnce() noexcept { sched_yield(); }

std::uint64_t timesTaken() noexcept {
  rusage usage{};
  ::getrusage(RUSAGE_THREAD, &usage);
  return static_cast<std::uint64_t>(usage.ru_nivcsw);
}

// allowed: sleep_for: it is the nap itself
void nap(std::chrono::microseconds length) noexcept { std::this_thread::sleep_for(length); }

bool napUntilMessage(std::chrono::microseconds length) noexcept {
  nap(length);
  return true;
}

}  // namespace platform
