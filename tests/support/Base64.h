// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace fixture {

// The bytes of a well-formed base64 text.
inline std::string decodeBase64(std::string_view text) {
  constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  unsigned bits = 0;
  unsigned width = 0;
  for (const char letter : text) {
    const auto digit = kAlphabet.find(letter);
    if (digit == std::string_view::npos) break;
    bits = (bits << 6 | static_cast<unsigned>(digit)) & 0xFFFF;
    width += 6;
    if (width < 8) continue;
    width -= 8;
    bytes.push_back(static_cast<char>(bits >> width & 0xFF));
  }
  return bytes;
}

}  // namespace fixture
