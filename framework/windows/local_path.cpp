// SPDX-License-Identifier: MIT
#include "framework/windows/local_path.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "framework/windows/windows_api.h"

namespace platform {
namespace {

// From this length on a folder could not be made any more: the system keeps room for a short name in it.
constexpr int kOrdinary = MAX_PATH - 12;

constexpr std::wstring_view kPlain = L"\\\\?\\";
constexpr std::wstring_view kPlainServer = L"\\\\?\\UNC\\";
constexpr std::wstring_view kServer = L"\\\\";

// "\\?\" and "\\.\": nothing is to be added to that.
bool isPlain(std::wstring_view path) noexcept {
  return path.starts_with(kServer) && path.size() > 3 && (path[2] == L'?' || path[2] == L'.') &&
         path[3] == L'\\';
}

UINT codePage() noexcept { return ::AreFileApisANSI() ? CP_ACP : CP_OEMCP; }

}  // namespace

LocalPath::LocalPath(const char* path) noexcept {
  std::array<wchar_t, kLongest> wide;
  const int size =
      ::MultiByteToWideChar(codePage(), 0, path != nullptr ? path : "", -1, wide.data(), kLongest);
  if (size <= kOrdinary || isPlain(wide.data())) {
    std::copy_n(wide.begin(), size, text_.begin());
  } else {
    makeLong(wide.data());
  }
}

void LocalPath::makeLong(const wchar_t* path) noexcept {
  // The whole path is made behind the place of the longest prefix, which takes the place of its start.
  wchar_t* const whole = text_.data() + kPlainServer.size();
  const auto room = static_cast<DWORD>(text_.size() - kPlainServer.size());
  const DWORD length = ::GetFullPathNameW(path, room, whole, nullptr);
  if (length == 0 || length >= room) {
    text_[0] = L'\0';
    return;
  }
  const bool onServer = std::wstring_view(whole).starts_with(kServer);
  const std::wstring_view prefix = onServer ? kPlainServer : kPlain;
  const std::wstring_view rest(onServer ? whole + kServer.size() : whole);
  std::copy_n(rest.data(), rest.size() + 1, std::copy(prefix.begin(), prefix.end(), text_.begin()));
}

}  // namespace platform
