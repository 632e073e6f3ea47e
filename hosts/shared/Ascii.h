// SPDX-License-Identifier: MIT
// Characters of ASCII, whatever the locale. All others are bytes of names, which nobody changes.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace hosts {

[[nodiscard]] inline bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

[[nodiscard]] inline char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

[[nodiscard]] inline std::string lowered(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](char c) { return lowered(c); });
  return result;
}

[[nodiscard]] inline bool isLetter(char c) { return lowered(c) >= 'a' && lowered(c) <= 'z'; }

}  // namespace hosts
