// SPDX-License-Identifier: MIT
// Contract: the encoding of the process's narrow texts, those that its `char` functions and its dialogs take
// and give.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

inline constexpr std::uint32_t kUtf8CodePage = 65001;

// The code page of this process's narrow texts; kUtf8CodePage where the system has no code pages (POSIX).
[[nodiscard]] std::uint32_t narrowCodePage() noexcept;

// `text`, of that code page, in UTF-8. None when it is no text of the code page (a byte stands for nothing, a
// character of two bytes lacks its second), or when the system does not know the code page.
[[nodiscard]] std::optional<std::string> utf8FromNarrow(std::string_view text, std::uint32_t codePage);

// UTF-8 in that code page. None when a character does not exist there (nothing that looks like it takes its
// place), when `text` is no UTF-8, or when the system does not know the code page.
[[nodiscard]] std::optional<std::string> narrowFromUtf8(std::string_view text, std::uint32_t codePage);

// Whether `byte` is the first of two in a character of that code page; the second may be any byte from 0x40
// on, a backslash (0x5C) too.
[[nodiscard]] bool isLeadByte(char byte, std::uint32_t codePage) noexcept;

}  // namespace platform
