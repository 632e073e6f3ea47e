// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/Names.h"

#include <filesystem>

#include "hosts/qxbrowse/ui/System.h"
// Only now:
#include <shlwapi.h>

namespace browse {
namespace {

constexpr wchar_t kByte = 0xDC00;  // no character begins with a low surrogate
constexpr std::size_t kLongestCharacter = 4;

bool isByte(wchar_t unit) { return unit >= kByte + 0x80 && unit <= kByte + 0xFF; }

// Empty when the text has something that the code page does not know.
std::wstring decode(std::string_view text, UINT codePage) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');
  const int units =
      MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, text.data(), length, wide.data(), length);
  wide.resize(static_cast<std::size_t>(units));
  return wide;
}

// The first character in UTF-8 and its length in bytes, or the escaped byte.
std::wstring decodeFirst(std::string_view text, std::size_t& bytes) {
  for (bytes = 1; bytes <= std::min(text.size(), kLongestCharacter); ++bytes) {
    const std::wstring character = decode(text.substr(0, bytes), CP_UTF8);
    if (!character.empty()) return character;
  }
  bytes = 1;
  return {static_cast<wchar_t>(kByte + static_cast<unsigned char>(text.front()))};
}

std::wstring decodeByCharacter(std::string_view text) {
  std::wstring wide;
  std::size_t bytes = 0;
  for (; !text.empty(); text.remove_prefix(bytes)) wide += decodeFirst(text, bytes);
  return wide;
}

std::string encode(std::wstring_view text, UINT codePage, DWORD flags, BOOL* lacks) {
  const int length = static_cast<int>(text.size());
  std::string narrow(text.size() * kLongestCharacter, '\0');
  const int bytes = WideCharToMultiByte(codePage, flags, text.data(), length, narrow.data(),
                                        static_cast<int>(narrow.size()), nullptr, lacks);
  narrow.resize(static_cast<std::size_t>(bytes));
  return narrow;
}

std::string encodeText(std::wstring_view text) {
  if (GetACP() == CP_UTF8) return encode(text, CP_UTF8, 0, nullptr);
  BOOL lacks = FALSE;
  std::string narrow = encode(text, CP_ACP, WC_NO_BEST_FIT_CHARS, &lacks);
  return lacks ? encode(text, CP_UTF8, 0, nullptr) : narrow;
}

bool isPairBefore(std::wstring_view text, std::size_t at) {
  return at > 0 && text[at - 1] >= 0xD800 && text[at - 1] < kByte;
}

}  // namespace

std::wstring fromLibrary(std::string_view text) {
  std::wstring wide = decode(text, CP_UTF8);
  if (wide.empty() && GetACP() != CP_UTF8) wide = decode(text, CP_ACP);
  return wide.empty() ? decodeByCharacter(text) : wide;
}

std::string toLibrary(std::wstring_view text) {
  std::string narrow;
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!isByte(text[at]) || isPairBefore(text, at)) continue;
    narrow += encodeText(text.substr(begin, at - begin));
    narrow += static_cast<char>(text[at] - kByte);
    begin = at + 1;
  }
  return narrow + encodeText(text.substr(begin));
}

std::wstring lastPart(std::wstring_view path) {
  while (path.size() > 1 && (path.back() == L'/' || path.back() == L'\\')) path.remove_suffix(1);
  const auto separator = path.find_last_of(L"/\\");
  return std::wstring(separator == std::wstring_view::npos ? path : path.substr(separator + 1));
}

std::wstring serverPath(std::wstring_view folder, std::wstring_view name) {
  std::wstring path(folder);
  if (path.empty() || path.back() != L'/') path += L'/';
  return path.append(name);
}

std::wstring serverParent(std::wstring_view path) {
  while (path.size() > 1 && path.back() == L'/') path.remove_suffix(1);
  const auto separator = path.rfind(L'/');
  if (separator == std::wstring_view::npos || separator == 0) return L"/";
  return std::wstring(path.substr(0, separator));
}

std::wstring localPath(std::wstring_view folder, std::wstring_view name) {
  return (std::filesystem::path(folder) / name).wstring();
}

std::wstring localParent(std::wstring_view path) {
  const std::filesystem::path folder = std::filesystem::path(localPath(path, L"")).parent_path();
  return PathIsRootW(folder.c_str()) ? std::wstring() : folder.parent_path().wstring();
}

}  // namespace browse
