// SPDX-License-Identifier: MIT
// A stay in one of the system's modal dialogs. No exception may pass through the system's frames: what leaves
// a message handler meanwhile is kept, ends the dialog as the user's cancel would, and comes out of
// Rethrow(). Runs of one thread nest.
#pragma once

#include <exception>
#include <functional>

#include "framework/windows/windows_api.h"

class ModalRun {
 public:
  ModalRun() noexcept;
  ~ModalRun();
  ModalRun(const ModalRun&) = delete;
  ModalRun& operator=(const ModalRun&) = delete;

  // Calls `show`, which calls the system, unless something is kept already. `cancel` is called from the
  // dialog's message loop, again and again until the dialog is over: it does nothing as long as there is no
  // window. It must not throw.
  void Show(const std::function<void()>& show, const std::function<void()>& cancel);

  // Behind the system's call and all that is to be undone after it.
  void Rethrow();

  // The first exception counts; it ends the dialog soon.
  void Keep(const std::exception_ptr& exception) noexcept;

 private:
  void cancelSoon() noexcept;
  static void CALLBACK onTimer(HWND, UINT, UINT_PTR timer, DWORD) noexcept;

  ModalRun* const m_outer;
  std::exception_ptr m_kept;
  const std::function<void()>* m_cancel = nullptr;  // while the dialog is shown
  UINT_PTR m_timer = 0;
};
