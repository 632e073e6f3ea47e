// SPDX-License-Identifier: MIT
// Command lines as the scripted server shows them, whatever encoding they had.
#pragma once

#include <string>
#include <string_view>

namespace fixture {

// `bytes` as ScriptedFtp::commands() gives them: each byte as the Latin-1 character that it is, in UTF-8.
inline std::string shown(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80) text += static_cast<char>(0xC0 | (byte >> 6));
    text += static_cast<char>(byte >= 0x80 ? 0x80 | (byte & 0x3F) : byte);
  }
  return text;
}

}  // namespace fixture
