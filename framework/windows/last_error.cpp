// SPDX-License-Identifier: MIT
#include "framework/platform/last_error.h"

#include <memory>

#include "framework/windows/windows_api.h"

namespace platform {

std::uint32_t lastError() noexcept { return ::GetLastError(); }

void setLastError(std::uint32_t error) noexcept { ::SetLastError(error); }

std::string systemErrorText(std::uint32_t error) {
  const LastErrorKeeper keeper;
  // A text with place holders has nothing to fill them here; the argument-array form makes the system refuse
  // it.
  constexpr DWORD kHow =
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_ARGUMENT_ARRAY;
  char* text = nullptr;
  const DWORD length = ::FormatMessageA(kHow, nullptr, error, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                        reinterpret_cast<char*>(&text), 0, nullptr);
  if (length == 0) return {};
  const std::unique_ptr<char, decltype(&::LocalFree)> owner(text, &::LocalFree);
  return std::string(text, length);
}

}  // namespace platform
