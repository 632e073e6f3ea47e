// SPDX-License-Identifier: MIT
#include "framework/windows/system_library.h"

#include <array>
#include <string>

namespace platform {

HMODULE loadSystemLibrary(const wchar_t* name) {
  std::array<wchar_t, MAX_PATH> folder{};
  const UINT size = ::GetSystemDirectoryW(folder.data(), MAX_PATH);
  if (size == 0 || size >= MAX_PATH) return nullptr;
  return ::LoadLibraryW((std::wstring(folder.data()) + L'\\' + name).c_str());
}

}  // namespace platform
