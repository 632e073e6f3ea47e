// SPDX-License-Identifier: MIT
#include "framework/platform/native_thread.h"

#include <algorithm>
#include <new>

#include "framework/platform/last_error.h"
#include "framework/platform/worker_thread.h"
#include "framework/windows/windows_api.h"

namespace platform {

struct NativeThread::State {
  Entry entry;
  void* argument;
  HANDLE handle = nullptr;

  static DWORD WINAPI run(void* object) noexcept {
    const auto* self = static_cast<State*>(object);
    try {
      self->entry(self->argument);
    } catch (...) {
    }
    return 0;
  }
};

// Messages end the wait by themselves, and in Wine each wait whose time runs out gives the processor up.
const std::chrono::milliseconds NativeThread::kSlice{20};

NativeThread::NativeThread() noexcept = default;

NativeThread::~NativeThread() {
  if (state_) ::CloseHandle(state_->handle);
}

bool NativeThread::start(Entry entry, void* argument) noexcept {
  std::unique_ptr<State> state(new (std::nothrow) State{entry, argument});
  if (!state) {
    setLastError(kErrorNotEnoughMemory);
    return false;
  }
  state->handle = ::CreateThread(nullptr, 0, &State::run, state.get(), 0, nullptr);
  if (state->handle == nullptr) return false;
  state_ = std::move(state);
  return true;
}

bool NativeThread::wait(std::chrono::milliseconds limit, bool wakeForMessages) noexcept {
  constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24);  // what fits the system's type
  const auto time = static_cast<DWORD>(std::clamp(limit, std::chrono::milliseconds(0), kLongest).count());
  if (!wakeForMessages) return ::WaitForSingleObject(state_->handle, time) == WAIT_OBJECT_0;
  return ::MsgWaitForMultipleObjectsEx(1, &state_->handle, time, QS_ALLINPUT, MWMO_INPUTAVAILABLE) ==
         WAIT_OBJECT_0;
}

void NativeThread::setNormalPriority() noexcept {
  ::SetThreadPriority(state_->handle, THREAD_PRIORITY_NORMAL);
}

// allowed: TerminateThread: the last resort for a worker that does not react
bool NativeThread::endByForce() noexcept { return ::TerminateThread(state_->handle, 0) != FALSE; }

void yieldOnce() noexcept { ::SwitchToThread(); }

std::uint64_t timesTaken() noexcept { return 0; }

// In Wine Sleep() begins with a yield, and every wait for a handle or a message whose time runs out ends with
// one; the wait for a condition has none.
void nap(std::chrono::microseconds length) noexcept {
  const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(length);
  SRWLOCK lock = SRWLOCK_INIT;
  CONDITION_VARIABLE never = CONDITION_VARIABLE_INIT;
  ::AcquireSRWLockExclusive(&lock);
  ::SleepConditionVariableSRW(&never, &lock, static_cast<DWORD>(milliseconds.count()), 0);
  ::ReleaseSRWLockExclusive(&lock);
}

bool napUntilMessage(std::chrono::microseconds length) noexcept {
  nap(length);
  return HIWORD(::GetQueueStatus(QS_ALLINPUT)) != 0;
}

}  // namespace platform
