// SPDX-License-Identifier: MIT
// Text of protocols: ASCII rules whatever the process's locale is. Bytes above 0x7f are left alone.
#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <string_view>
#include <system_error>

namespace ascii {

constexpr char lowerCase(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool isAscii(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// A byte that can have no place in a path: below 0x20, or 0x7f.
constexpr bool isControl(char c) noexcept { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }

constexpr bool equalBlindToCase(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

constexpr bool startsBlindToCase(std::string_view text, std::string_view start) noexcept {
  return equalBlindToCase(text.substr(0, start.size()), start);
}

constexpr bool containsBlindToCase(std::string_view text, std::string_view part) noexcept {
  return part.empty() || std::search(text.begin(), text.end(), part.begin(), part.end(), [](char x, char y) {
                           return lowerCase(x) == lowerCase(y);
                         }) != text.end();
}

// All of `digits` as a decimal number without a sign. False, and `number` unchanged, when it is none or too
// large.
template <std::integral Number>
constexpr bool readNumber(std::string_view digits, Number& number) noexcept {
  if (digits.empty() || !std::all_of(digits.begin(), digits.end(), isDigit)) return false;
  const char* end = digits.data() + digits.size();
  Number value{};
  const auto [stop, error] = std::from_chars(digits.data(), end, value);
  if (error != std::errc{} || stop != end) return false;
  number = value;
  return true;
}

}  // namespace ascii
