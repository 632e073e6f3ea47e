// SPDX-License-Identifier: MIT
#include "framework/ui/WideText.h"

#include <utility>

#include "framework/windows/windows_api.h"

std::wstring wideText(const std::string& text) {
  const int size = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_ACP, 0, text.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), needed);
  return wide;
}

namespace {

// `lacks` is set when a replacement character had to be taken.
std::string narrow(const std::wstring& text, bool& lacks) {
  // UTF-8 has all characters, and the system takes neither of these for it.
  const bool utf8 = GetACP() == CP_UTF8;
  const DWORD flags = utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
  BOOL replaced = FALSE;
  const int size = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(CP_ACP, flags, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_ACP, flags, text.data(), size, result.data(), needed, nullptr,
                      utf8 ? nullptr : &replaced);
  lacks = replaced != FALSE;
  return result;
}

}  // namespace

std::string narrowText(const std::wstring& text) {
  bool lacks = false;
  return narrow(text, lacks);
}

std::optional<std::string> exactNarrowText(const std::wstring& text) {
  bool lacks = false;
  std::string result = narrow(text, lacks);
  return lacks ? std::nullopt : std::optional(std::move(result));
}

PathParts pathParts(const std::wstring& path) {
  const std::size_t slash = path.rfind(L'\\');
  if (slash == std::wstring::npos) return {L"", path};
  const bool root = slash == 0 || path[slash - 1] == L':';
  return {path.substr(0, root ? slash + 1 : slash), path.substr(slash + 1)};
}
