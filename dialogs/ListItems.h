// SPDX-License-Identifier: MIT
// The items of a list-view control.
#pragma once

#include <cstddef>

#include "framework/windows/windows_api.h"

inline constexpr std::size_t kItemTextSize = 256;  // with the terminator; longer texts are cut

int ItemCount(HWND list) noexcept;
void ReadItemText(HWND list, int index, char (&text)[kItemTextSize]) noexcept;
bool DeleteItem(HWND list, int index) noexcept;
// The selected item behind `index`, from -1 on; -1 when there is none.
int NextSelectedItem(HWND list, int index) noexcept;
