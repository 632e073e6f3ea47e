// SPDX-License-Identifier: MIT
// The only includer of the Windows headers in this program. It comes last among the program's own headers.
#pragma once

#if !defined(STRICT)
#define STRICT
#endif
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif

#include <windows.h>
// Only now:
#include <commctrl.h>
#include <shellapi.h>
