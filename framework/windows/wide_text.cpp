// SPDX-License-Identifier: MIT
#include "framework/windows/wide_text.h"

#include <climits>
#include <utility>

namespace platform {

namespace {

// The system counts in int.
bool countable(std::size_t size) noexcept { return size <= INT_MAX; }

}  // namespace

std::optional<std::wstring> wideFrom(std::string_view text, UINT codePage, InvalidBytes invalid) {
  if (text.empty()) return L"";  // an error for the system
  if (!countable(text.size())) return std::nullopt;
  const DWORD flags = invalid == InvalidBytes::kRefused ? MB_ERR_INVALID_CHARS : 0;
  const int size = static_cast<int>(text.size());
  const int needed = ::MultiByteToWideChar(codePage, flags, text.data(), size, nullptr, 0);
  if (needed <= 0) return std::nullopt;
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  ::MultiByteToWideChar(codePage, flags, text.data(), size, wide.data(), needed);
  return wide;
}

std::optional<NarrowText> narrowFrom(std::wstring_view text, UINT codePage) {
  if (text.empty()) return NarrowText{"", true};
  if (!countable(text.size())) return std::nullopt;
  // UTF-8 has all characters, and the system takes neither of these for it.
  const bool utf8 = codePage == CP_UTF8;
  const DWORD flags = utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
  BOOL replaced = FALSE;
  const int size = static_cast<int>(text.size());
  const int needed = ::WideCharToMultiByte(codePage, flags, text.data(), size, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(needed), '\0');
  ::WideCharToMultiByte(codePage, flags, text.data(), size, bytes.data(), needed, nullptr,
                        utf8 ? nullptr : &replaced);
  return NarrowText{std::move(bytes), replaced == FALSE};
}

}  // namespace platform
