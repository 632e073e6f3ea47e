// SPDX-License-Identifier: MIT
// Libraries of the system that are loaded when they are first asked for. They stay loaded.
#pragma once

#include "framework/windows/windows_api.h"

namespace platform {

// From the system's own folder alone, whatever lies beside the host's program. Null where it has no such one.
HMODULE loadSystemLibrary(const wchar_t* name);

// False, and null in `function`, where the library lacks it.
template <class Function>
bool findFunction(HMODULE library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
  return function != nullptr;
}

}  // namespace platform
