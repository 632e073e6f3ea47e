// SPDX-License-Identifier: MIT
#include "examples/host/SharedLibrary.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <system_error>

namespace {

// Windows' loader takes a path only with its own separators.
std::string nativePath(std::string path) {
  std::ranges::replace(path, '/', '\\');
  return path;
}

}  // namespace

SharedLibrary::SharedLibrary(const std::string& path) : m_handle(LoadLibraryA(nativePath(path).c_str())) {
  if (m_handle != nullptr) return;
  const auto error = static_cast<int>(GetLastError());
  throw std::runtime_error(path + ": " + std::system_category().message(error));
}

SharedLibrary::~SharedLibrary() { FreeLibrary(static_cast<HMODULE>(m_handle)); }

void* SharedLibrary::find(const char* name) const noexcept {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m_handle), name));
}

std::string clientLibraryName() { return "ZRM_QXKT32x64.dll"; }

std::string programFolder() {
  std::string path(32768, '\0');
  path.resize(GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path.substr(0, path.find_last_of('\\') + 1);
}

std::string clientLibraryPath() { return programFolder() + clientLibraryName(); }
