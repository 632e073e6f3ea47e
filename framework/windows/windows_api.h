// SPDX-License-Identifier: MIT
// The only includer of the Windows headers: their order, their version and their macros are settled here.
// Included by framework/windows/*.cpp alone, always as the last include: the headers define many words.
#pragma once

#ifndef _WIN32
#error "windows_api.h belongs to the Windows build"
#endif

#ifndef STRICT
#define STRICT
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
// Windows 7 is the oldest system served. The compiler's own headers preset a later one.
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0601

// Before windows.h, which would bring in the old winsock.h.
#include <winsock2.h>
// Only now:
#include <windows.h>

// These macros rename members of classes that share a file with them. Our code names the narrow functions
// itself (CreateFileA), so nobody misses them.
#undef CopyFile
#undef CreateDirectory
#undef CreateFile
#undef DeleteFile
#undef DispatchMessage
#undef FindFirstFile
#undef FindNextFile
#undef FormatMessage
#undef GetCurrentDirectory
#undef GetCurrentTime
#undef GetMessage
#undef GetObject
#undef GetTempPath
#undef GetUserName
#undef MessageBox
#undef MoveFile
#undef PeekMessage
#undef PostMessage
#undef RemoveDirectory
#undef SendMessage
#undef SetCurrentDirectory
#undef Yield
