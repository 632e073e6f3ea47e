// SPDX-License-Identifier: MIT
#include "framework/platform/code_page.h"

#include <climits>

#include "framework/windows/windows_api.h"

namespace platform {

namespace {

// The system counts in int, and has its own opinion of an empty text.
bool countable(std::size_t size) noexcept { return size > 0 && size <= INT_MAX; }

std::optional<std::wstring> wideFrom(std::string_view text, std::uint32_t codePage) {
  if (!countable(text.size())) return std::nullopt;
  const int size = static_cast<int>(text.size());
  const int needed = ::MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
  if (needed <= 0) return std::nullopt;
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  ::MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), needed);
  return wide;
}

// `lost` is set when a character was replaced; null for code pages that have all characters.
std::optional<std::string> bytesFrom(const std::wstring& wide, std::uint32_t codePage, DWORD flags,
                                     BOOL* lost) {
  const int size = static_cast<int>(wide.size());
  const int needed = ::WideCharToMultiByte(codePage, flags, wide.data(), size, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(needed), '\0');
  ::WideCharToMultiByte(codePage, flags, wide.data(), size, bytes.data(), needed, nullptr, lost);
  return bytes;
}

}  // namespace

std::uint32_t narrowCodePage() noexcept { return ::GetACP(); }

std::optional<std::string> utf8FromNarrow(std::string_view text, std::uint32_t codePage) {
  const auto wide = wideFrom(text, codePage);
  return wide ? bytesFrom(*wide, CP_UTF8, 0, nullptr) : std::nullopt;
}

std::optional<std::string> narrowFromUtf8(std::string_view text, std::uint32_t codePage) {
  const auto wide = wideFrom(text, CP_UTF8);
  if (!wide) return std::nullopt;
  BOOL lost = FALSE;
  auto narrow = bytesFrom(*wide, codePage, WC_NO_BEST_FIT_CHARS, &lost);
  return lost == FALSE ? narrow : std::nullopt;
}

bool isLeadByte(char byte, std::uint32_t codePage) noexcept {
  return ::IsDBCSLeadByteEx(codePage, static_cast<BYTE>(byte)) != FALSE;
}

}  // namespace platform
