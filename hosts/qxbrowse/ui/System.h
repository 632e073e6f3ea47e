// SPDX-License-Identifier: MIT
// The Windows headers of this program. It comes last among the program's own headers.
#pragma once

#include "hosts/shared/windows/System.h"
// Only now:
#include <commctrl.h>
#include <shellapi.h>
