// SPDX-License-Identifier: MIT
#include "framework/platform/stop_token.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <new>

namespace platform {

struct StopToken::Impl {
  std::atomic<bool> raised{false};  // the cheap question; the descriptor is for waits only
  int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
};

StopToken::StopToken() {
  auto impl = std::make_unique<Impl>();
  if (impl->descriptor < 0) throw std::bad_alloc();
  impl_ = impl.release();
}

StopToken::~StopToken() {
  ::close(impl_->descriptor);
  delete impl_;
}

void StopToken::raise() noexcept {
  impl_->raised.store(true, std::memory_order_release);
  ::eventfd_write(impl_->descriptor, 1);
}

bool StopToken::raised() const noexcept { return impl_->raised.load(std::memory_order_acquire); }

std::intptr_t StopToken::nativeHandle() const noexcept { return impl_->descriptor; }

void StopToken::waitOnce(std::chrono::milliseconds limit) const noexcept {
  pollfd wakeUp{impl_->descriptor, POLLIN, 0};
  ::poll(&wakeUp, 1, static_cast<int>(limit.count()));
}

}  // namespace platform
