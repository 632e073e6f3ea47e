// SPDX-License-Identifier: MIT
// The part of the stop token that no platform differs in: whose token it is, and what a raised one means.
#include "framework/platform/stop_token.h"

#include <algorithm>
#include <thread>

namespace platform {
namespace {

constinit thread_local StopToken* t_current = nullptr;

}  // namespace

StopToken* StopToken::current() noexcept { return t_current; }

StopToken::Scope::Scope(StopToken* token) noexcept : previous_(t_current) { t_current = token; }

StopToken::Scope::~Scope() { t_current = previous_; }

StopToken::~StopToken() {
  if (handle_.load() != kNoHandle) closeHandle(handle_.load());
}

void StopToken::raise() noexcept {
  raised_.store(true);
  const std::intptr_t handle = handle_.load();
  if (handle != kNoHandle) signalHandle(handle);
}

std::intptr_t StopToken::nativeHandle() const noexcept {
  std::intptr_t handle = handle_.load();
  if (handle != kNoHandle) return handle;
  const std::intptr_t made = makeHandle();
  if (made == kNoHandle) return kNoHandle;
  if (!handle_.compare_exchange_strong(handle, made)) {
    closeHandle(made);
    return handle;
  }
  if (raised_.load()) signalHandle(made);
  return made;
}

bool StopToken::wait(std::chrono::milliseconds limit) const noexcept {
  using std::chrono::milliseconds;
  limit = std::clamp<milliseconds>(limit, milliseconds(0), std::chrono::hours(24 * 365));  // sums must fit
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!raised()) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left <= milliseconds(0)) return false;
    const std::intptr_t handle = nativeHandle();
    if (handle != kNoHandle) {
      waitForHandle(handle, std::min(left, milliseconds(60'000)));
    } else {
      // allowed: sleep_for: the system gives nothing to wait for, so the flag has to be looked at
      std::this_thread::sleep_for(std::min(left, milliseconds(10)));
    }
  }
  return true;
}

bool stopRequested() noexcept {
  const StopToken* token = StopToken::current();
  return token != nullptr && token->raised();
}

void throwIfStopped() {
  if (stopRequested()) throw OperationStopped{};
}

void stoppableSleep(std::chrono::milliseconds duration) {
  const StopToken* token = StopToken::current();
  if (token == nullptr) {
    // allowed: sleep_for: this is the sleep itself, of a thread that nobody can stop
    std::this_thread::sleep_for(duration);
  } else if (token->wait(duration)) {
    throw OperationStopped{};
  }
}

}  // namespace platform
