// SPDX-License-Identifier: MIT
// The library's exports for hosts in C++20: linked, or of a library that is loaded at run time and needs
// neither an import library nor a place on the loader's path.
#pragma once

#if defined(_WIN32)
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <filesystem>
#include <memory>
#include <system_error>

#include "QXExports.h"
#include "QXResult.h"

namespace qx {

struct Exports {
  PfnCreateQXIPIFInstance create = nullptr;
  PfnFreeQXIPIFInstance free = nullptr;
  PfnDoFTPConnect connect = nullptr;
  PfnDllAddRef addRef = nullptr;
  PfnDllRelease release = nullptr;
  // Unloads the library with the last copy. Null: it is linked, or the host sees to it.
  std::shared_ptr<void> library;
};

// Of the library that the host is linked with.
inline Exports linkedExports() noexcept {
  return {&CreateQXIPIFInstance, &FreeQXIPIFInstance, &DoFTPConnect, &DllAddRef, &DllRelease, nullptr};
}

namespace detail {

#if defined(_WIN32)
inline std::shared_ptr<void> openLibrary(std::filesystem::path file) {
  HMODULE const module = LoadLibraryW(file.make_preferred().c_str());
  return {module, [](void* opened) {
            if (opened != nullptr) FreeLibrary(static_cast<HMODULE>(opened));
          }};
}

inline void* findExport(void* library, const char* name) noexcept {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

inline Report whyNotLoaded() {
  const auto number = static_cast<std::uint32_t>(GetLastError());
  return {true, false, number, std::system_category().message(static_cast<int>(number)), {}};
}
#else
inline std::shared_ptr<void> openLibrary(const std::filesystem::path& file) {
  return {dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL), [](void* opened) {
            if (opened != nullptr) dlclose(opened);
          }};
}

inline void* findExport(void* library, const char* name) noexcept { return dlsym(library, name); }

// The loader tells a text and no number.
inline Report whyNotLoaded() {
  const char* const text = dlerror();
  return {true, false, 0, text != nullptr ? text : "", {}};
}
#endif

template <typename Function>
bool findInto(Function& function, void* library, const char* name) noexcept {
  function = reinterpret_cast<Function>(findExport(library, name));
  return function != nullptr;
}

}  // namespace detail

// Loads the library. Fails, with the system's text, where there is none or it lacks an export.
inline Result<Exports> loadLibrary(const std::filesystem::path& file) {
  Exports exports;
  exports.library = detail::openLibrary(file);
  void* const library = exports.library.get();
  const bool found = library != nullptr &&
                     detail::findInto(exports.create, library, "CreateQXIPIFInstance") &&
                     detail::findInto(exports.free, library, "FreeQXIPIFInstance") &&
                     detail::findInto(exports.connect, library, "DoFTPConnect") &&
                     detail::findInto(exports.addRef, library, "DllAddRef") &&
                     detail::findInto(exports.release, library, "DllRelease");
  if (!found) return {std::nullopt, detail::whyNotLoaded()};
  return {std::move(exports), {}};
}

}  // namespace qx
