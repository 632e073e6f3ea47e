// SPDX-License-Identifier: MIT
// Types that the library and its hosts share. Conventions of the whole binary interface:
//  1. Texts are narrow (8-bit), NUL-terminated, and belong to whoever made them; the library copies what it
//  keeps.
//  2. QXBool is one byte: 0 is false, any other value is true; the library answers 0 or 1.
//  3. Null is allowed exactly where the function says so; elsewhere it makes the call fail, never crash.
//  4. Memory that the library hands out goes back through the library (FTPFreeFileAPI, FreeQXIPIFInstance).
//  5. Calls are plain x64 calls of the platform. No exception ever leaves the library's operations, except
//  the
//     file exception of HTTPDownloadFile.
#pragma once

#include <cstddef>
#include <cstdint>

typedef std::uint8_t QXBool;

// A value of the host that the library only passes on (pointer-sized).
typedef std::uintptr_t QXHostValue;
