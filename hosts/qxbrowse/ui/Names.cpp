// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/Names.h"

#include <filesystem>

#include "hosts/qxbrowse/ui/System.h"
#include "hosts/shared/windows/CodePages.h"
// Only now:
#include <shlwapi.h>

namespace browse {
namespace {

constexpr wchar_t kByte = 0xDC00;  // no character begins with a low surrogate
constexpr std::size_t kLongestCharacter = 4;

bool isByte(wchar_t unit) { return unit >= kByte + 0x80 && unit <= kByte + 0xFF; }

// The first character in UTF-8 and its length in bytes, or the escaped byte.
std::wstring decodeFirst(std::string_view text, std::size_t& bytes) {
  for (bytes = 1; bytes <= std::min(text.size(), kLongestCharacter); ++bytes) {
    if (auto character = hosts::wide(text.substr(0, bytes), hosts::Encoding::utf8))
      return *std::move(character);
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

bool isPairBefore(std::wstring_view text, std::size_t at) {
  return at > 0 && text[at - 1] >= 0xD800 && text[at - 1] < kByte;
}

}  // namespace

std::wstring fromLibrary(std::string_view text) {
  auto wide = hosts::fromLibrary(text);
  return wide ? *std::move(wide) : decodeByCharacter(text);
}

std::string toLibrary(std::wstring_view text) {
  std::string narrow;
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!isByte(text[at]) || isPairBefore(text, at)) continue;
    narrow += hosts::toLibrary(text.substr(begin, at - begin));
    narrow += static_cast<char>(text[at] - kByte);
    begin = at + 1;
  }
  return narrow + hosts::toLibrary(text.substr(begin));
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
