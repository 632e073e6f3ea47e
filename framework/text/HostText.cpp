// SPDX-License-Identifier: MIT
#include "framework/text/HostText.h"

#include <utility>

#include "framework/text/AsciiText.h"

namespace hosttext {

namespace {

// Bytes of the character of UTF-8 that begins with this one; 0 when none does.
std::size_t sizeByLead(unsigned char lead) noexcept {
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// Whether all bytes behind the first may follow it in one character.
bool followLead(std::string_view text) noexcept {
  const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  for (std::size_t at = 1; at < text.size(); ++at) {
    if ((byte(at) & 0xC0) != 0x80) return false;
  }
  if (text.size() < 2) return true;
  // Too long a form, a surrogate, beyond the last character: the second byte tells.
  const unsigned char lead = byte(0);
  if ((lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) >= 0xA0)) return false;
  return (lead != 0xF0 || byte(1) >= 0x90) && (lead != 0xF4 || byte(1) < 0x90);
}

// Bytes of the character at the front; 0 when it is none of UTF-8.
std::size_t utf8CharacterSize(std::string_view text) noexcept {
  const std::size_t size = sizeByLead(static_cast<unsigned char>(text[0]));
  return size <= text.size() && followLead(text.substr(0, size)) ? size : 0;
}

// A character of UTF-8 that lacks its end.
bool isUnfinishedUtf8(std::string_view text) noexcept {
  return sizeByLead(static_cast<unsigned char>(text[0])) > text.size() && followLead(text);
}

// The bytes of the longest beginning that is UTF-8.
std::size_t utf8Size(std::string_view text) noexcept {
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t size = utf8CharacterSize(text.substr(at));
    if (size == 0) break;
    at += size;
  }
  return at;
}

std::string componentForServer(std::string_view component, std::uint32_t codePage) {
  if (isUtf8(component)) return std::string(component);
  return platform::utf8FromNarrow(component, codePage).value_or(std::string(component));
}

std::string componentForHost(std::string_view component, std::uint32_t codePage) {
  if (!ascii::isAscii(component) && isUtf8(component)) {
    auto narrow = platform::narrowFromUtf8(component, codePage);
    if (narrow && componentForServer(*narrow, codePage) == component) return std::move(*narrow);
  }
  return std::string(component);
}

template <class Convert>
std::string eachComponent(std::string_view path, std::uint32_t codePage, Convert convert) {
  if (codePage == platform::kUtf8CodePage || ascii::isAscii(path)) return std::string(path);
  std::string result;
  for (;;) {
    const std::size_t slash = path.find('/');
    result += convert(path.substr(0, slash), codePage);
    if (slash == std::string_view::npos) return result;
    result += '/';
    path.remove_prefix(slash + 1);
  }
}

}  // namespace

bool isUtf8(std::string_view text) noexcept { return utf8Size(text) == text.size(); }

std::string pathForServer(std::string_view path, std::uint32_t codePage) {
  return eachComponent(path, codePage, componentForServer);
}

std::string pathForHost(std::string_view path, std::uint32_t codePage) {
  return eachComponent(path, codePage, componentForHost);
}

std::string textForHost(std::string_view text, std::uint32_t codePage) {
  if (codePage == platform::kUtf8CodePage || ascii::isAscii(text)) return std::string(text);
  return platform::narrowFromUtf8(text, codePage).value_or(std::string(text));
}

bool equalPaths(std::string_view left, std::string_view right, std::uint32_t codePage) {
  if (codePage == platform::kUtf8CodePage || ascii::isAscii(left) || ascii::isAscii(right)) {
    return ascii::equalBlindToCase(left, right);
  }
  return ascii::equalBlindToCase(pathForServer(left, codePage), pathForServer(right, codePage));
}

std::size_t characterSize(std::string_view text, std::size_t at, bool narrow,
                          std::uint32_t codePage) noexcept {
  const bool two = narrow && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) >= 0x40 &&
                   platform::isLeadByte(text[at], codePage);
  return two ? 2 : 1;
}

std::size_t wholeSize(std::string_view cut, std::uint32_t codePage) noexcept {
  std::size_t at = utf8Size(cut);
  if (at == cut.size() || isUnfinishedUtf8(cut.substr(at))) return at;
  if (codePage == platform::kUtf8CodePage) return cut.size();
  for (at = 0; at + 1 < cut.size();) at += characterSize(cut, at, true, codePage);
  return at < cut.size() && platform::isLeadByte(cut[at], codePage) ? at : cut.size();
}

}  // namespace hosttext
