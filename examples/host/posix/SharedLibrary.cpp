// SPDX-License-Identifier: MIT
#include "examples/host/SharedLibrary.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

SharedLibrary::SharedLibrary(const std::string& path)
    : m_handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (m_handle == nullptr) throw std::runtime_error(dlerror());
}

SharedLibrary::~SharedLibrary() { dlclose(m_handle); }

void* SharedLibrary::find(const char* name) const noexcept { return dlsym(m_handle, name); }

std::string clientLibraryName() { return "libZRM_QXKT32x64.so"; }

std::string programFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + "/";
}

std::string clientLibraryPath() {
  const std::string beside = programFolder() + clientLibraryName();
  return std::filesystem::exists(beside) ? beside : programFolder() + "../lib/" + clientLibraryName();
}
