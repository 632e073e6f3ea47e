// SPDX-License-Identifier: MIT
#include "framework/platform/wait_watch.h"

#include <algorithm>
#include <utility>

namespace platform {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

constinit thread_local WaitWatch* t_watch = nullptr;

// Nobody watches while it lives.
class Unwatched {
 public:
  Unwatched() noexcept : watch_(std::exchange(t_watch, nullptr)) {}
  ~Unwatched() { t_watch = watch_; }
  Unwatched(const Unwatched&) = delete;
  Unwatched& operator=(const Unwatched&) = delete;

 private:
  WaitWatch* const watch_;
};

}  // namespace

WaitWatch::WaitWatch(milliseconds interval, std::function<void()> look)
    : interval_(interval),
      look_(std::move(look)),
      due_(steady_clock::now() + interval),
      outer_(std::exchange(t_watch, this)) {}

WaitWatch::~WaitWatch() { t_watch = outer_; }

milliseconds WaitWatch::sleepAtMost(milliseconds limit) noexcept {
  if (t_watch == nullptr) return limit;
  const auto left = std::chrono::ceil<milliseconds>(t_watch->due_ - steady_clock::now());
  return std::clamp(left, milliseconds(0), limit);
}

void WaitWatch::lookIfDue() {
  WaitWatch* const watch = t_watch;
  if (watch == nullptr || steady_clock::now() < watch->due_) return;
  const Unwatched unwatched;
  watch->look_();
  watch->due_ = steady_clock::now() + watch->interval_;
}

}  // namespace platform
