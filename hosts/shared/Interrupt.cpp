// SPDX-License-Identifier: MIT
#include "hosts/shared/Interrupt.h"

#include <atomic>
#include <cstdlib>
#include <utility>

#include "hosts/shared/Bell.h"

namespace hosts {
namespace {

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

// For the thread of OnInterrupt. It never goes: signals come until the very end.
Bell& bell = *new Bell;

}  // namespace

bool isInterrupted() noexcept { return interrupted; }

void interrupt() noexcept {
  if (interrupted.exchange(true)) std::_Exit(kInterruptedExitCode);
  bell.ring();
}

void forgetInterrupt() noexcept { interrupted = false; }

OnInterrupt::OnInterrupt(std::function<void()> act)
    : m_act(std::move(act)), m_thread(threadWithoutSignals([this] { run(); })) {}

OnInterrupt::~OnInterrupt() {
  m_isOver = true;
  bell.ring();
  m_thread.join();
}

void OnInterrupt::run() {
  while (!m_isOver && !isInterrupted()) bell.wait();
  if (!m_isOver) m_act();
}

}  // namespace hosts
