// SPDX-License-Identifier: MIT
#include "framework/ui/ModalRun.h"

#include <utility>

#include "framework/ui/ThreadState.h"

ModalRun::ModalRun() noexcept : m_outer(std::exchange(AfxGetThreadState()->m_pModalRun, this)) {}

ModalRun::~ModalRun() {
  if (m_timer != 0) KillTimer(nullptr, m_timer);
  AfxGetThreadState()->m_pModalRun = m_outer;
}

void ModalRun::Show(const std::function<void()>& show, const std::function<void()>& cancel) {
  if (m_kept) return;
  struct Shown {
    ModalRun& run;
    ~Shown() { run.m_cancel = nullptr; }
  } const shown{*this};
  m_cancel = &cancel;
  show();
}

void ModalRun::Rethrow() {
  if (m_kept) std::rethrow_exception(std::exchange(m_kept, nullptr));
}

void ModalRun::Keep(const std::exception_ptr& exception) noexcept {
  if (!m_kept) m_kept = exception;
  cancelSoon();
}

// The exception may come before the dialog has its window, so the dialog's own loop does it, by a timer.
void ModalRun::cancelSoon() noexcept {
  if (m_timer == 0) m_timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &onTimer);
}

// A dialog below the innermost one waits until that is over.
void CALLBACK ModalRun::onTimer(HWND, UINT, UINT_PTR timer, DWORD) noexcept {
  const ModalRun* const run = AfxGetThreadState()->m_pModalRun;
  if (run != nullptr && run->m_timer == timer && run->m_cancel != nullptr) (*run->m_cancel)();
}
