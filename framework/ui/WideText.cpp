// SPDX-License-Identifier: MIT
#include "framework/ui/WideText.h"

#include "framework/windows/windows_api.h"

std::wstring wideText(const std::string& text) {
  const int size = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_ACP, 0, text.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), needed);
  return wide;
}

std::string narrowText(const std::wstring& text) {
  const int size = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(CP_ACP, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.data(), size, narrow.data(), needed, nullptr, nullptr);
  return narrow;
}

PathParts pathParts(const std::wstring& path) {
  const std::size_t slash = path.rfind(L'\\');
  if (slash == std::wstring::npos) return {L"", path};
  const bool root = slash == 0 || path[slash - 1] == L':';
  return {path.substr(0, root ? slash + 1 : slash), path.substr(slash + 1)};
}
