// SPDX-License-Identifier: MIT
// Takes the OK button of the directory-or-file dialog over: the folder shown is the answer, whatever name the
// dialog holds.
#pragma once

#include <string_view>

class CDirFileOpen;

// From now on `dialog` decides about the OK of its real window.
void InstallOkInterceptor(CDirFileOpen& dialog) noexcept;

// Two backslashes in a row behind the first character. Second bytes of two-byte characters do not count.
[[nodiscard]] bool HasDoubledBackslash(std::string_view folder) noexcept;
