// SPDX-License-Identifier: MIT
#include "framework/platform/code_page.h"

#include <utility>

#include "framework/windows/wide_text.h"

namespace platform {

namespace {

std::optional<std::string> converted(std::string_view text, UINT from, UINT to) {
  const auto wide = wideFrom(text, from, InvalidBytes::kRefused);
  auto narrow = wide ? narrowFrom(*wide, to) : std::nullopt;
  if (!narrow || !narrow->exact) return std::nullopt;
  return std::move(narrow->bytes);
}

}  // namespace

std::uint32_t narrowCodePage() noexcept { return ::GetACP(); }

std::optional<std::string> utf8FromNarrow(std::string_view text, std::uint32_t codePage) {
  return converted(text, codePage, CP_UTF8);
}

std::optional<std::string> narrowFromUtf8(std::string_view text, std::uint32_t codePage) {
  return converted(text, CP_UTF8, codePage);
}

bool isLeadByte(char byte, std::uint32_t codePage) noexcept {
  return ::IsDBCSLeadByteEx(codePage, static_cast<BYTE>(byte)) != FALSE;
}

}  // namespace platform
