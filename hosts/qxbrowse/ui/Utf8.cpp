// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/Utf8.h"

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

std::wstring fromUtf8(std::string_view text) {
  const auto size = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');
  wide.resize(
      static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), size)));
  return wide;
}

std::string toUtf8(std::wstring_view text) {
  constexpr std::size_t kLongestUnit = 3;
  const auto size = static_cast<int>(text.size());
  std::string narrow(text.size() * kLongestUnit, '\0');
  narrow.resize(static_cast<std::size_t>(WideCharToMultiByte(
      CP_UTF8, 0, text.data(), size, narrow.data(), static_cast<int>(narrow.size()), nullptr, nullptr)));
  return narrow;
}

}  // namespace browse
