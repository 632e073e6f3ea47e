// SPDX-License-Identifier: MIT
#include "examples/host/SharedLibrary.h"

#include <stdexcept>

void* SharedLibrary::address(const char* name) const {
  void* const found = find(name);
  if (found == nullptr) throw std::runtime_error(std::string("the library has no ") + name);
  return found;
}
