// SPDX-License-Identifier: MIT
// One entry of a directory listing as FTPGetDirectory hands it to the host, into an array of the host's, and
// as OnNotify shows it.
#pragma once

#include "QXTypes.h"

// 100 ns units since 1601-01-01, as Windows' FILETIME has it; here a local calendar time with whole seconds.
typedef struct QXFileTime {
  uint32_t nLow;
  uint32_t nHigh;
} QXFileTime;

typedef struct QXDirEntry {
  QXBool bIsDirectory;
  char szPath[259];  // the listed directory
  // 0x10 directory, 0x1 read-only, 0x2 hidden, 0x4 system, 0x20 archive, 0x80 normal, 0x100 temporary, 0x800
  // compressed: 0x10 is set for each directory, the others where the server's entry has them.
  uint32_t dwAttributes;
  QXFileTime ftCreationTime;  // all three are the time that the server tells; zeros where it tells none
  QXFileTime ftLastAccessTime;
  QXFileTime ftLastWriteTime;
  uint32_t nFileSizeHigh;  // bytes, high half first; both 0 for a directory
  uint32_t nFileSizeLow;
  // 0 in what a host gets. While a client keeps a listing (m_pFileBuffer), the first four bytes of its first
  // entry hold the number of entries.
  uint8_t aReserved[8];
  char szName[276];  // QXIPInt.h tells its encoding
} QXDirEntry;

QX_ASSERT_LAYOUT(sizeof(QXDirEntry) == 580, "hosts allocate arrays of entries");
QX_ASSERT_LAYOUT(offsetof(QXDirEntry, szPath) == 1 && offsetof(QXDirEntry, dwAttributes) == 260 &&
                     offsetof(QXDirEntry, ftCreationTime) == 264 &&
                     offsetof(QXDirEntry, ftLastAccessTime) == 272 &&
                     offsetof(QXDirEntry, ftLastWriteTime) == 280 &&
                     offsetof(QXDirEntry, nFileSizeHigh) == 288 &&
                     offsetof(QXDirEntry, nFileSizeLow) == 292 && offsetof(QXDirEntry, szName) == 304,
                 "hosts read entries by offset");
