// SPDX-License-Identifier: MIT
// The only includer of <windows.h> in the hosts. It comes last among their own headers.
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
