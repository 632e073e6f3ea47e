// SPDX-License-Identifier: MIT
#include "framework/ui/WideText.h"

#include <utility>

#include "framework/platform/code_page.h"
#include "framework/windows/wide_text.h"

namespace {

platform::NarrowText narrow(const std::wstring& text) {
  return platform::narrowFrom(text, platform::narrowCodePage()).value_or(platform::NarrowText{"", false});
}

}  // namespace

std::wstring wideText(const std::string& text) {
  using platform::InvalidBytes;
  return platform::wideFrom(text, platform::narrowCodePage(), InvalidBytes::kReplaced).value_or(L"");
}

std::string narrowText(const std::wstring& text) { return narrow(text).bytes; }

std::optional<std::string> exactNarrowText(const std::wstring& text) {
  platform::NarrowText result = narrow(text);
  return result.exact ? std::optional(std::move(result.bytes)) : std::nullopt;
}

PathParts pathParts(const std::wstring& path) {
  const std::size_t slash = path.rfind(L'\\');
  if (slash == std::wstring::npos) return {L"", path};
  const bool root = slash == 0 || path[slash - 1] == L':';
  return {path.substr(0, root ? slash + 1 : slash), path.substr(slash + 1)};
}
