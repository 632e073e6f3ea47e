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

bool StopToken::wait(std::chrono::milliseconds limit) const noexcept {
  using std::chrono::milliseconds;
  limit = std::clamp<milliseconds>(limit, milliseconds(0), std::chrono::hours(24 * 365));  // sums must fit
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!raised()) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left <= milliseconds(0)) return false;
    waitOnce(std::min(left, milliseconds(60'000)));
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
