// SPDX-License-Identifier: MIT
// Where windows stand, and the arithmetic of it.
#pragma once

#include "framework/windows/windows_api.h"

inline LONG width(const RECT& rect) noexcept { return rect.right - rect.left; }
inline LONG height(const RECT& rect) noexcept { return rect.bottom - rect.top; }

// In the co-ordinates of the dialog's client area.
inline RECT rectOf(HWND dialog, HWND control) noexcept {
  RECT rect{};
  GetWindowRect(control, &rect);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}
