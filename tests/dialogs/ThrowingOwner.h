// SPDX-License-Identifier: MIT
// A window that owns a dialog and whose handler throws when it is told to.
#pragma once

#include <stdexcept>

#include "framework/ui/Wnd.h"

class ThrowingOwner : public CWnd {
 public:
  static constexpr UINT kThrow = WM_APP;  // always throws

  ThrowingOwner() {
    CreateEx(0, "STATIC", "owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, RECT{0, 0, 200, 100}, nullptr, 0);
  }
  ~ThrowingOwner() override { DestroyWindow(); }

  bool throwsWhenDisabled = false;

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    const bool disabled = message == WM_ENABLE && wParam == FALSE;
    if (message == kThrow || (disabled && throwsWhenDisabled)) throw std::runtime_error("owner");
    return CWnd::WindowProc(message, wParam, lParam);
  }
};
