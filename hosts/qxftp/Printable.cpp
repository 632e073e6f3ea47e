// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Printable.h"

#include <cstdint>
#include <cstdio>

namespace qxftp {
namespace {

struct Character {
  std::size_t size = 1;
  char32_t code = 0;
  bool isValid = false;
};

std::size_t sizeByFirst(std::uint8_t first) {
  if (first < 0x80) return 1;
  if (first >= 0xc2 && first < 0xe0) return 2;
  if (first >= 0xe0 && first < 0xf0) return 3;
  return first >= 0xf0 && first < 0xf5 ? 4 : 0;
}

// What UTF-8 has several ways for, and the halves of UTF-16.
bool isForbidden(std::size_t size, char32_t code) {
  return (size == 3 && code < 0x800) || (size == 4 && (code < 0x10000 || code > 0x10ffff)) ||
         (code >= 0xd800 && code < 0xe000);
}

Character characterAt(std::string_view text) {
  const auto first = static_cast<std::uint8_t>(text[0]);
  const std::size_t size = sizeByFirst(first);
  if (size == 0 || size > text.size()) return {};
  char32_t code = size == 1 ? first : first & (0xffU >> (size + 1));
  for (const char next : text.substr(1, size - 1)) {
    const auto byte = static_cast<std::uint8_t>(next);
    if ((byte & 0xc0U) != 0x80) return {};
    code = code << 6 | (byte & 0x3fU);
  }
  return isForbidden(size, code) ? Character{} : Character{size, code, true};
}

bool isHarmless(const Character& character) {
  const char32_t code = character.code;
  const bool isControl = code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029;
  const bool turns = (code >= 0x202a && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069) ||
                     code == 0x200e || code == 0x200f;
  return character.isValid && !isControl && !turns;
}

void appendEscaped(std::string& out, std::string_view bytes) {
  if (bytes == "\n") {
    out += "\\n";
  } else if (bytes == "\t") {
    out += "\\t";
  } else {
    for (const char c : bytes) {
      char code[5];
      std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned>(static_cast<std::uint8_t>(c)));
      out += code;
    }
  }
}

}  // namespace

std::string printable(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const Character character = characterAt(text);
    const std::string_view bytes = text.substr(0, character.size);
    if (isHarmless(character)) {
      out += bytes;
    } else {
      appendEscaped(out, bytes);
    }
    text.remove_prefix(bytes.size());
  }
  return out;
}

}  // namespace qxftp
