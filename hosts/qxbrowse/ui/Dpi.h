// SPDX-License-Identifier: MIT
// Lengths and the system's font for the screen that a window is on.
#pragma once

#include <memory>
#include <type_traits>

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

constexpr UINT kPlainDpi = 96;

// A length that is given for kPlainDpi.
inline int scale(int length, UINT dpi) {
  return MulDiv(length, static_cast<int>(dpi), static_cast<int>(kPlainDpi));
}

// 96 where the system knows no dots per inch of windows.
UINT dpiOf(HWND window);

struct FontDeleter {
  void operator()(HFONT font) const { DeleteObject(font); }
};
using Font = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;

// The font of messages.
Font systemFont(UINT dpi);

}  // namespace browse
