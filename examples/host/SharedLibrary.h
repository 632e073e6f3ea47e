// SPDX-License-Identifier: MIT
// A shared library loaded at run time: the one thing that a host does differently on each system.
#pragma once

#include <string>

class SharedLibrary {
 public:
  // Throws std::runtime_error with the system's own text.
  explicit SharedLibrary(const std::string& path);
  ~SharedLibrary();
  SharedLibrary(const SharedLibrary&) = delete;
  SharedLibrary& operator=(const SharedLibrary&) = delete;

  // The exported function of this name. Throws std::runtime_error when there is none.
  template <typename Function>
  [[nodiscard]] Function function(const char* name) const {
    return reinterpret_cast<Function>(address(name));
  }

  // Null when the library does not export the name.
  [[nodiscard]] void* find(const char* name) const noexcept;

 private:
  [[nodiscard]] void* address(const char* name) const;

  void* m_handle;
};

// The name under which the library is shipped on this system.
[[nodiscard]] std::string clientLibraryName();

// The folder of the running program, with a separator at its end.
[[nodiscard]] std::string programFolder();

// The library beside the running program. On Linux, where there is none, that in the folder lib beside the
// program's own.
[[nodiscard]] std::string clientLibraryPath();
