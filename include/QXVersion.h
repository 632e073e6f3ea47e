// SPDX-License-Identifier: MIT
// The version of these headers and of the library that they came with, in C99 and in C++. This is the one
// place where it stands: the build, the DLL's version resource and the packages read it from here.
//
// The major number is that of the binary interface: hosts that were built for 1.0.0 work with every 1.x.y,
// which has the same slots, fields and exports. It is the number in the Linux library's own name, too.
#pragma once

#define QXIP_VERSION_MAJOR 1
#define QXIP_VERSION_MINOR 0
#define QXIP_VERSION_PATCH 0

// A number to compare with: 1.2.3 is 10203.
#define QXIP_VERSION_NUMBER (QXIP_VERSION_MAJOR * 10000 + QXIP_VERSION_MINOR * 100 + QXIP_VERSION_PATCH)

// The text "1.0.0".
#define QXIP_VERSION QX_VERSION_TEXT(QXIP_VERSION_MAJOR, QXIP_VERSION_MINOR, QXIP_VERSION_PATCH)
#define QX_VERSION_TEXT(nMajor, nMinor, nPatch) QX_VERSION_JOIN(nMajor, nMinor, nPatch)
#define QX_VERSION_JOIN(nMajor, nMinor, nPatch) #nMajor "." #nMinor "." #nPatch
