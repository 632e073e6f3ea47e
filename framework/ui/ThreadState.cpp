// SPDX-License-Identifier: MIT
#include "framework/ui/ThreadState.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include "framework/ui/ModalRun.h"
#include "framework/ui/Wnd.h"

namespace {

constinit thread_local AFX_THREAD_STATE t_state;

LRESULT CALLBACK onComputerBasedTraining(int code, WPARAM wParam, LPARAM lParam) {
  AFX_THREAD_STATE* const state = AfxGetThreadState();
  const HHOOK hook = state->m_hHookCbt;
  if (code == HCBT_CREATEWND && state->m_pWndInit != nullptr) {
    CWnd* const window = std::exchange(state->m_pWndInit, nullptr);
    try {
      window->SubclassWindow(reinterpret_cast<HWND>(wParam));
    } catch (...) {
      AfxKeepException();
    }
  }
  return CallNextHookEx(hook, code, wParam, lParam);
}

}  // namespace

AFX_THREAD_STATE* AfxGetThreadState() noexcept { return &t_state; }

void AfxHookWindowCreate(CWnd* window) {
  if (t_state.m_hHookCbt == nullptr) {
    t_state.m_hHookCbt = SetWindowsHookExA(WH_CBT, onComputerBasedTraining, nullptr, GetCurrentThreadId());
    if (t_state.m_hHookCbt == nullptr) throw std::runtime_error("the system gives no hook");
  }
  t_state.m_pWndInit = window;
}

bool AfxUnhookWindowCreate() noexcept {
  if (t_state.m_hHookCbt != nullptr) UnhookWindowsHookEx(std::exchange(t_state.m_hHookCbt, nullptr));
  return std::exchange(t_state.m_pWndInit, nullptr) == nullptr;
}

void AfxKeepException() noexcept {
  if (t_state.m_pModalRun != nullptr) t_state.m_pModalRun->Keep(std::current_exception());
}
