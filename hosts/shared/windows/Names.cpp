// SPDX-License-Identifier: MIT
#include "hosts/shared/Names.h"

#include "hosts/shared/windows/System.h"

namespace hosts {
namespace {

std::optional<std::wstring> wide(const std::string& text, UINT codePage) {
  if (text.empty()) return std::wstring();
  const int size = static_cast<int>(text.size());
  const DWORD flags = MB_ERR_INVALID_CHARS;
  const int count = MultiByteToWideChar(codePage, flags, text.data(), size, nullptr, 0);
  if (count == 0) return {};
  std::wstring result(static_cast<std::size_t>(count), L'\0');
  MultiByteToWideChar(codePage, flags, text.data(), size, result.data(), count);
  return result;
}

// None where the code page lacks a character.
std::optional<std::string> narrow(const std::wstring& text, UINT codePage) {
  if (text.empty()) return std::string();
  const int size = static_cast<int>(text.size());
  const bool mayLack = codePage != CP_UTF8 && GetACP() != CP_UTF8;
  const DWORD flags = mayLack ? WC_NO_BEST_FIT_CHARS : 0;
  BOOL lacks = FALSE;
  BOOL* const lacking = mayLack ? &lacks : nullptr;
  const int count = WideCharToMultiByte(codePage, flags, text.data(), size, nullptr, 0, nullptr, lacking);
  if (count == 0 || lacks) return {};
  std::string result(static_cast<std::size_t>(count), '\0');
  WideCharToMultiByte(codePage, flags, text.data(), size, result.data(), count, nullptr, nullptr);
  return result;
}

bool isAscii(const std::string& text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

}  // namespace

NameRules namesHere() { return NameRules::windows; }

// By capitals, as the file system does.
std::string withoutCase(std::string_view path) {
  std::wstring text = pathFromServer(path).wstring();
  const int size = static_cast<int>(text.size());
  LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, text.c_str(), size, text.data(), size, nullptr,
                nullptr, 0);
  return narrow(text, CP_UTF8).value_or(std::string(path));
}

std::string nameForServer(const std::filesystem::path& name) {
  const auto inCodePage = narrow(name.wstring(), CP_ACP);
  if (inCodePage && (isAscii(*inCodePage) || !wide(*inCodePage, CP_UTF8))) return *inCodePage;
  return narrow(name.wstring(), CP_UTF8).value_or("");
}

std::filesystem::path nameFromServer(const std::string& name) {
  if (const auto unicode = wide(name, CP_UTF8)) return *unicode;
  return wide(name, CP_ACP).value_or(std::wstring(name.begin(), name.end()));
}

std::optional<std::string> pathForLibrary(const std::filesystem::path& path) {
  return narrow(std::filesystem::absolute(path).make_preferred().wstring(), CP_ACP);
}

std::string shown(const std::filesystem::path& path) { return narrow(path.wstring(), CP_UTF8).value_or("?"); }

}  // namespace hosts
