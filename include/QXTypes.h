// SPDX-License-Identifier: MIT
// Types that the library and its hosts share. This header, those that describe memory (QXErrorInfo.h,
// QXDirEntry.h, QXClientTable.h, QXExports.h, QXDialogs.h, QXHooks.h) and QXVersion.h are C99 as well as
// C++11; QXIPInt.h is C++11, the others are C++20.
//
// Conventions of the whole binary interface:
//  1. Texts are narrow (8-bit), NUL-terminated, and belong to whoever made them; the library copies what it
//     keeps, so a text need not outlive the call that it is given to.
//  2. QXBool is one byte: 0 is false, any other value is true; the library answers 0 or 1.
//  3. Null is allowed exactly where the function says so; elsewhere it makes the call fail, never crash.
//  4. Memory that the library hands out goes back through the library (FTPFreeFileAPI, FreeQXIPIFInstance).
//  5. Calls are plain x64 calls of the platform. No exception ever leaves the library's operations, except
//     the file exception of HTTPDownloadFile; none may leave a function of the host that the library calls.
//  6. Records have the alignment that the platform's compilers give them by default. Each is checked where it
//     is declared: a host that packs structures (/Zp1, -fpack-struct) does not compile.
#pragma once

#if defined(__cplusplus)
#include <cstddef>
#include <cstdint>
#endif
#include <stddef.h>
#include <stdint.h>

// The calling convention of functions on both sides. Microsoft's compiler can be told to prefer another one.
#if defined(_MSC_VER)
#define QX_CALL __cdecl
#else
#define QX_CALL
#endif

// A condition on the layout that hosts rely on, checked by the compiler. The text is shown where it can be.
#if defined(__cplusplus)
#define QX_ASSERT_LAYOUT(condition, text) static_assert(condition, text)
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define QX_ASSERT_LAYOUT(condition, text) _Static_assert(condition, text)
#else
#define QX_ASSERT_LAYOUT(condition, text) extern char qx_layout_holds[(condition) ? 1 : -1]
#endif

QX_ASSERT_LAYOUT(sizeof(void*) == 8, "the library is for x64 alone");

typedef uint8_t QXBool;

// A value of the host that the library only passes on (pointer-sized).
typedef uintptr_t QXHostValue;
