// SPDX-License-Identifier: MIT
#include "framework/ui/NarrowText.h"

#include "framework/windows/windows_api.h"

std::size_t characterSize(std::string_view text, std::size_t at) noexcept {
  const bool two = at + 1 < text.size() && IsDBCSLeadByteEx(CP_ACP, static_cast<BYTE>(text[at])) != FALSE;
  return two ? 2 : 1;
}

std::size_t findText(std::string_view text, std::string_view wanted) noexcept {
  for (std::size_t at = 0; at < text.size(); at += characterSize(text, at))
    if (text.substr(at).starts_with(wanted)) return at;
  return std::string_view::npos;
}

std::size_t findLastOf(std::string_view text, std::string_view wanted) noexcept {
  std::size_t last = std::string_view::npos;
  for (std::size_t at = 0; at < text.size(); at += characterSize(text, at))
    if (wanted.find(text[at]) != std::string_view::npos) last = at;
  return last;
}

bool endsWith(std::string_view text, char wanted) noexcept {
  return !text.empty() && findLastOf(text, {&wanted, 1}) == text.size() - 1;
}

void replaceEach(std::string& text, char wanted, char replacement) noexcept {
  for (std::size_t at = 0; at < text.size(); at += characterSize(text, at))
    if (text[at] == wanted) text[at] = replacement;
}

std::string_view leadingCharacters(std::string_view text, std::size_t size) noexcept {
  std::size_t end = 0;
  for (std::size_t next = 0; next < text.size(); end = next) {
    next += characterSize(text, next);
    if (next > size) break;
  }
  return text.substr(0, end);
}

std::string_view lastComponent(std::string_view path) noexcept {
  const std::size_t separator = findLastOf(path, "\\/");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}
