// SPDX-License-Identifier: MIT
// The only includer of the Windows headers: their order, their version and their macros are settled here.
// Files that need other headers of the system (commdlg.h, shlobj.h) include them behind this one. It comes
// last among our own headers wherever it can: the headers define many words.
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
#undef CreateWindow
#undef CreateWindowEx
#undef DefWindowProc
#undef DeleteFile
#undef DispatchMessage
#undef FindFirstFile
#undef FindNextFile
#undef FindWindow
#undef FormatMessage
#undef GetClassName
#undef GetCurrentDirectory
#undef GetCurrentTime
#undef GetDlgItemText
#undef GetMessage
#undef GetObject
#undef GetOpenFileName
#undef GetProfileString
#undef GetSaveFileName
#undef GetTempPath
#undef GetUserName
#undef GetWindowText
#undef GetWindowTextLength
#undef LoadLibrary
#undef LoadString
#undef MessageBox
#undef MoveFile
#undef PeekMessage
#undef PostMessage
#undef RemoveDirectory
#undef SendMessage
#undef SetCurrentDirectory
#undef SetDlgItemText
#undef SetWindowText
#undef WriteProfileString
#undef Yield
