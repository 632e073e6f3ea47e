// SPDX-License-Identifier: MIT
// An edit control under the framework's usual name.
#pragma once

#include "framework/ui/Wnd.h"

class CEdit : public CWnd {
 public:
  bool Create(DWORD style, const RECT& rect, HWND parent, UINT id) {
    return CreateEx(0, "EDIT", "", style, rect, parent, id);
  }
};
