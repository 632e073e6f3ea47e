// SPDX-License-Identifier: MIT
// A window with a menu of the dialogs, which shows what the last one answered.
#pragma once

#include <string>

#include "examples/host/SharedLibrary.h"

// Returns when the window is closed.
void runDemoWindow(const SharedLibrary& library, const std::string& path);
