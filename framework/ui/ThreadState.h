// SPDX-License-Identifier: MIT
// What the framework remembers for each thread that makes windows.
#pragma once

#include <exception>

#include "framework/windows/windows_api.h"

class CWnd;
class ModalRun;

struct AFX_THREAD_STATE {
  CWnd* m_pWndInit = nullptr;           // gets the next window that the thread creates
  CWnd* m_pAlternateWndInit = nullptr;  // gets the window of the next common-dialog hook procedure
  HHOOK m_hHookCbt = nullptr;           // set while m_pWndInit waits
  ModalRun* m_pModalRun = nullptr;      // the innermost of the system's dialogs
  std::exception_ptr m_pending;         // left a message handler and waits behind the system's frames
};

AFX_THREAD_STATE* AfxGetThreadState() noexcept;

// From here until AfxUnhookWindowCreate() the next window that this thread creates becomes `window`'s.
// Throws std::runtime_error when the system gives no hook.
void AfxHookWindowCreate(CWnd* window);

// False when no window has come.
bool AfxUnhookWindowCreate() noexcept;

// No exception may pass through the system's frames: message handlers leave theirs here, and the dialog that
// is shown ends (ModalRun). REQUIRES: inside a catch block. The first one counts.
void AfxKeepException() noexcept;
