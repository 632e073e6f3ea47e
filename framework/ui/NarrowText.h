// SPDX-License-Identifier: MIT
// Searching in narrow texts of the system's 8-bit code page, in which a character may have two bytes. The
// second one may look like a backslash (0x5C) or a bar (0x7C), so these step from character to character.
// Positions count bytes; std::string_view::npos where nothing is found.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The bytes of the character at `at`: 1, or 2 where the text has both.
[[nodiscard]] std::size_t characterSize(std::string_view text, std::size_t at) noexcept;

// Where `wanted`, which has ASCII characters only, stands first.
[[nodiscard]] std::size_t findText(std::string_view text, std::string_view wanted) noexcept;

// Where the last character is that is one of `wanted`'s ASCII characters.
[[nodiscard]] std::size_t findLastOf(std::string_view text, std::string_view wanted) noexcept;

[[nodiscard]] bool endsWith(std::string_view text, char wanted) noexcept;

void replaceEach(std::string& text, char wanted, char replacement) noexcept;

// As much of the start of `text` as fits `size` bytes without a half character.
[[nodiscard]] std::string_view leadingCharacters(std::string_view text, std::size_t size) noexcept;

// What stands behind the last backslash or slash.
[[nodiscard]] std::string_view lastComponent(std::string_view path) noexcept;
