// SPDX-License-Identifier: MIT
// What the framework remembers for each thread that makes windows. Nothing in it has a destructor: with one
// the run time would keep the library loaded for as long as the thread lives.
#pragma once

#include <type_traits>

#include "framework/windows/windows_api.h"

class CWnd;
class ModalRun;

struct AFX_THREAD_STATE {
  CWnd* m_pWndInit = nullptr;           // gets the next window that the thread creates
  CWnd* m_pAlternateWndInit = nullptr;  // gets the window of the next common-dialog hook procedure
  HHOOK m_hHookCbt = nullptr;           // set while m_pWndInit waits
  ModalRun* m_pModalRun = nullptr;      // the innermost of the system's dialogs
};

static_assert(std::is_trivially_destructible_v<AFX_THREAD_STATE>);

AFX_THREAD_STATE* AfxGetThreadState() noexcept;

// From here until AfxUnhookWindowCreate() the next window that this thread creates becomes `window`'s.
// Throws std::runtime_error when the system gives no hook.
void AfxHookWindowCreate(CWnd* window);

// False when no window has come.
bool AfxUnhookWindowCreate() noexcept;

// No exception may pass through the system's frames: message handlers leave theirs here, and the dialog that
// is shown ends (ModalRun). Where none is shown nobody would ask for it: it is dropped. REQUIRES: inside a
// catch block. The first one counts.
void AfxKeepException() noexcept;
