// SPDX-License-Identifier: MIT
#include "hosts/shared/Interrupt.h"

#include <atomic>
#include <cstdlib>

namespace hosts {
namespace {

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

}  // namespace

bool isInterrupted() noexcept { return interrupted; }

void interrupt() noexcept {
  if (interrupted.exchange(true)) std::_Exit(kInterruptedExitCode);
}

void forgetInterrupt() noexcept { interrupted = false; }

}  // namespace hosts
