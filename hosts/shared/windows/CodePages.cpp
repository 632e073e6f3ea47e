// SPDX-License-Identifier: MIT
#include "hosts/shared/windows/CodePages.h"

#include "hosts/shared/windows/System.h"

namespace hosts {
namespace {

constexpr std::size_t kLongestCharacter = 4;  // bytes in any code page

UINT numberOf(Encoding encoding) { return encoding == Encoding::utf8 ? CP_UTF8 : CP_ACP; }

// No encoding makes more units of a text than it has bytes.
std::wstring widened(std::string_view text, Encoding encoding, DWORD flags) {
  const int bytes = static_cast<int>(text.size());
  std::wstring result(text.size(), L'\0');
  const int units = MultiByteToWideChar(numberOf(encoding), flags, text.data(), bytes, result.data(), bytes);
  result.resize(static_cast<std::size_t>(units));
  return result;
}

std::string narrowed(std::wstring_view text, Encoding encoding, DWORD flags, BOOL* lacks) {
  std::string result(text.size() * kLongestCharacter, '\0');
  const int bytes = WideCharToMultiByte(numberOf(encoding), flags, text.data(), static_cast<int>(text.size()),
                                        result.data(), static_cast<int>(result.size()), nullptr, lacks);
  result.resize(static_cast<std::size_t>(bytes));
  return result;
}

}  // namespace

std::optional<std::wstring> wide(std::string_view text, Encoding encoding) {
  std::wstring result = widened(text, encoding, MB_ERR_INVALID_CHARS);
  if (result.empty() && !text.empty()) return {};
  return result;
}

// UTF-8 lacks nothing, and the system takes neither the flag nor the question for it.
std::optional<std::string> narrow(std::wstring_view text, Encoding encoding) {
  const bool mayLack = encoding == Encoding::codePage && GetACP() != CP_UTF8;
  BOOL lacks = FALSE;
  std::string result =
      narrowed(text, encoding, mayLack ? WC_NO_BEST_FIT_CHARS : 0, mayLack ? &lacks : nullptr);
  if (lacks || (result.empty() && !text.empty())) return {};
  return result;
}

std::wstring wideWithMarks(std::string_view text, Encoding encoding) { return widened(text, encoding, 0); }

std::string narrowWithMarks(std::wstring_view text, Encoding encoding) {
  return narrowed(text, encoding, 0, nullptr);
}

std::string toLibrary(std::wstring_view text) {
  const auto inCodePage = narrow(text, Encoding::codePage);
  return inCodePage && fromLibrary(*inCodePage) == text ? *inCodePage : narrowWithMarks(text, Encoding::utf8);
}

std::optional<std::wstring> fromLibrary(std::string_view text) {
  auto inUtf8 = wide(text, Encoding::utf8);
  return inUtf8 ? inUtf8 : wide(text, Encoding::codePage);
}

}  // namespace hosts
