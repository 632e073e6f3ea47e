// SPDX-License-Identifier: MIT
#include "tests/dll/library.h"

#include <cstdlib>
#include <stdexcept>

const ClientLibrary& library() {
  static const ClientLibrary loaded = [] {
    const char* const path = std::getenv("QX_LIBRARY");
    if (path == nullptr) throw std::runtime_error("QX_LIBRARY does not name the library");
    return ClientLibrary(path);
  }();
  return loaded;
}
