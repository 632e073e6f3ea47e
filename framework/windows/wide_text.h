// SPDX-License-Identifier: MIT
// Narrow texts of a code page as the wide ones of the system, and back.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "framework/windows/windows_api.h"

namespace platform {

enum class InvalidBytes { kRefused, kReplaced };

// Nothing when `text` is none of the code page (unless its bytes are to be replaced), or when the system does
// not know the code page.
[[nodiscard]] std::optional<std::wstring> wideFrom(std::string_view text, UINT codePage,
                                                   InvalidBytes invalid);

struct NarrowText {
  std::string bytes;
  bool exact;  // the code page has all characters
};

// What the code page lacks becomes its replacement character, never one that merely looks alike: the text
// might name another file. Nothing when the system does not know the code page.
[[nodiscard]] std::optional<NarrowText> narrowFrom(std::wstring_view text, UINT codePage);

}  // namespace platform
