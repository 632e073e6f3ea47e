// SPDX-License-Identifier: MIT
// Narrow texts are bytes here, and UTF-8 by agreement: nothing is ever converted.
#include "framework/platform/code_page.h"

namespace platform {

std::uint32_t narrowCodePage() noexcept { return kUtf8CodePage; }

std::optional<std::string> utf8FromNarrow(std::string_view, std::uint32_t) { return std::nullopt; }

std::optional<std::string> narrowFromUtf8(std::string_view, std::uint32_t) { return std::nullopt; }

bool isLeadByte(char, std::uint32_t) noexcept { return false; }

}  // namespace platform
