// SPDX-License-Identifier: MIT
#include <algorithm>

#include "framework/internet/listing/FtpListing.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

// Bytes of the character at the front: those of its UTF-8 form where it has one, else 1.
std::size_t characterLength(std::string_view text) noexcept {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : lead >= 0xc2 ? 2 : 1;
  if (text.size() < length) return 1;
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; };
  return std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length), isContinuation)
             ? length
             : 1;
}

// What is left of a pattern at the name's end: nothing but wildcards, with or without a dot before them.
bool matchesNothing(std::string_view pattern) noexcept {
  pattern.remove_prefix(std::min(pattern.find_first_not_of("*?"), pattern.size()));
  if (pattern.size() > 1 && pattern.front() == '.') pattern.remove_prefix(1);
  return pattern.find_first_not_of("*?") == std::string_view::npos;
}

// Matches the front of the pattern, which is no '*', with the front of the name and takes both off.
bool step(std::string_view& pattern, std::string_view& name) noexcept {
  if (pattern.empty()) return false;
  if (pattern.front() == '?') {
    pattern.remove_prefix(1);
    if (name.front() != '.') name.remove_prefix(characterLength(name));
    return true;
  }
  if (ascii::lowerCase(pattern.front()) != ascii::lowerCase(name.front())) return false;
  pattern.remove_prefix(1);
  name.remove_prefix(1);
  return true;
}

// Only the last '*' is ever tried again: what matched before it, matched as early as it can.
bool matchesWildcards(std::string_view pattern, std::string_view name) noexcept {
  std::string_view patternBehindStar;
  std::string_view nameBehindStar;
  bool starSeen = false;
  while (!name.empty()) {
    if (pattern.starts_with('*')) {
      pattern.remove_prefix(1);
      patternBehindStar = pattern;
      nameBehindStar = name;
      starSeen = true;
    } else if (!step(pattern, name)) {
      if (!starSeen) return false;
      nameBehindStar.remove_prefix(characterLength(nameBehindStar));
      name = nameBehindStar;
      pattern = patternBehindStar;
    }
  }
  return matchesNothing(pattern);
}

}  // namespace

bool matchesPattern(std::string_view pattern, std::string_view name) {
  if (pattern == "*" || pattern == "*.*" || ascii::equalBlindToCase(pattern, name)) return true;
  // Names that hold no dot, by an ending that is none itself.
  if (pattern.size() > 1 && pattern.ends_with('.')) {
    pattern.remove_suffix(1);
    if (name.find('.') != std::string_view::npos) return false;
  }
  return matchesWildcards(pattern, name);
}

}  // namespace internet
