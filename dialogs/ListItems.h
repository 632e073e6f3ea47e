// SPDX-License-Identifier: MIT
// The items of a list-view control.
#pragma once

#include <optional>
#include <string>

#include "framework/windows/windows_api.h"

int ItemCount(HWND list) noexcept;
// Up to 255 characters, the longest name of a file; longer texts are cut.
std::wstring ItemText(HWND list, int index);
// The same, of an item whose text the list keeps itself; nothing for one that its owner is asked for.
std::optional<std::wstring> KeptText(HWND list, int index);
// -1 when there is none.
int FocusedItem(HWND list) noexcept;
void SetItemFocus(HWND list, int index, bool focused) noexcept;
bool DeleteItem(HWND list, int index) noexcept;
// The selected item behind `index`, from -1 on; -1 when there is none.
int NextSelectedItem(HWND list, int index) noexcept;
