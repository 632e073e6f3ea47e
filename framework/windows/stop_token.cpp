// SPDX-License-Identifier: MIT
#include "framework/platform/stop_token.h"

#include <atomic>
#include <memory>
#include <new>

#include "framework/windows/windows_api.h"

namespace platform {

struct StopToken::Impl {
  std::atomic<bool> raised{false};  // the cheap question; the event is for waits only
  HANDLE event = ::CreateEventA(nullptr, TRUE, FALSE, nullptr);
};

StopToken::StopToken() {
  auto impl = std::make_unique<Impl>();
  if (impl->event == nullptr) throw std::bad_alloc();
  impl_ = impl.release();
}

StopToken::~StopToken() {
  ::CloseHandle(impl_->event);
  delete impl_;
}

void StopToken::raise() noexcept {
  impl_->raised.store(true, std::memory_order_release);
  ::SetEvent(impl_->event);
}

bool StopToken::raised() const noexcept { return impl_->raised.load(std::memory_order_acquire); }

std::intptr_t StopToken::nativeHandle() const noexcept {
  return reinterpret_cast<std::intptr_t>(impl_->event);
}

void StopToken::waitOnce(std::chrono::milliseconds limit) const noexcept {
  ::WaitForSingleObject(impl_->event, static_cast<DWORD>(limit.count()));
}

}  // namespace platform
