// SPDX-License-Identifier: MIT
#include "hosts/shared/PercentCode.h"

#include <charconv>
#include <stdexcept>

#include "hosts/shared/Ascii.h"

namespace hosts {
namespace {

constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";

char characterOf(std::string_view digits) {
  unsigned value = 0;
  const char* const end = digits.data() + digits.size();
  if (digits.size() != 2 || std::from_chars(digits.data(), end, value, 16).ptr != end) {
    throw std::invalid_argument(R"(a "%" wants two hex digits behind it (a percent sign itself is "%25"))");
  }
  return static_cast<char>(value);
}

}  // namespace

std::string percentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isCode = text[at] == '%';
    decoded += isCode ? characterOf(text.substr(at + 1, 2)) : text[at];
    if (isCode) at += 2;
    if (isControl(decoded.back())) throw std::invalid_argument("there is a control character in it");
  }
  return decoded;
}

std::string percentEncoded(std::string_view text, std::string_view kept) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    if (kPlain.find(c) != std::string_view::npos || kept.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      (encoded += '%').append({digits[byte >> 4], digits[byte & 15]});
    }
  }
  return encoded;
}

}  // namespace hosts
