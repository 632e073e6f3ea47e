// SPDX-License-Identifier: MIT
// "pattern\nname": the matcher against the same rules written as a table of all pairs of positions.
#include <algorithm>
#include <string>
#include <vector>

#include "tests/fuzz/Invariants.h"

namespace {

std::size_t characterLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  std::size_t length = 1;
  if (lead >= 0xc2) length = 2;
  if (lead >= 0xe0) length = 3;
  if (lead >= 0xf0) length = 4;
  if (length > text.size()) return 1;
  for (std::size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[i]) >> 6) != 2) return 1;
  }
  return length;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

bool sameText(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lower(x) == lower(y); });
}

class Table {
 public:
  Table(std::string_view pattern, std::string_view name)
      : pattern_(pattern), name_(name), known_((pattern.size() + 1) * (name.size() + 1), kUnknown) {}

  bool matches(std::size_t p, std::size_t n) {
    char& answer = known_[p * (name_.size() + 1) + n];
    if (answer == kUnknown) answer = compute(p, n) ? 1 : 0;
    return answer == 1;
  }

 private:
  static constexpr char kUnknown = 2;

  bool compute(std::size_t p, std::size_t n) {
    if (p == pattern_.size()) return n == name_.size();
    const bool atEnd = n == name_.size();
    const std::size_t step = atEnd ? 0 : characterLength(name_.substr(n));
    if (pattern_[p] == '*') return matches(p + 1, n) || (!atEnd && matches(p, n + step));
    if (pattern_[p] == '?') return matches(p + 1, atEnd || name_[n] == '.' ? n : n + step);
    if (!atEnd) return lower(pattern_[p]) == lower(name_[n]) && matches(p + 1, n + 1);
    // ".*" and its like match nothing.
    const std::string_view rest = pattern_.substr(p);
    return rest.size() > 1 && rest[0] == '.' && rest.find_first_not_of("*?", 1) == std::string_view::npos;
  }

  std::string_view pattern_;
  std::string_view name_;
  std::vector<char> known_;
};

bool expected(std::string_view pattern, std::string_view name) {
  if (sameText(pattern, name)) return true;
  if (pattern.size() > 1 && pattern.back() == '.') {
    if (name.find('.') != std::string_view::npos) return false;
    pattern.remove_suffix(1);
  }
  return Table(pattern, name).matches(0, 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The table's recursion is as deep as both texts are long.
  constexpr std::size_t kLongest = 512;
  const std::string_view text = fuzz::textOf(data, std::min(size, kLongest));
  const std::string_view pattern = text.substr(0, text.find('\n'));
  const std::string_view name = text.substr(std::min(pattern.size() + 1, text.size()));
  fuzz::require(internet::matchesPattern(pattern, name) == expected(pattern, name));
  fuzz::require(internet::matchesPattern("*", name) && internet::matchesPattern("*.*", name));
  fuzz::require(internet::matchesPattern(name, name));
  return 0;
}
