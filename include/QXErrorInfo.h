// SPDX-License-Identifier: MIT
// The host's error record. The host owns it, hands its address to CreateQXIPIFInstance, and zeroes it (or at
// least bSet) before use. It keeps the first failure: while bSet is not 0 nothing replaces it. Clear it by
// zeroing. An internet error (OnIPError) replaces an earlier record.
#pragma once

#include "QXTypes.h"

typedef struct QXErrorInfo {
  uint32_t bSet;      // its first byte not 0: the record holds an error
  uint32_t nCode;     // 1000 for every failure that the client reports
  uint32_t nError;    // platform error number, or internet error number (12000 and above)
  char szText[4100];  // title, a blank, detail "text [number source line]"; at most 4096 characters
} QXErrorInfo;

QX_ASSERT_LAYOUT(sizeof(QXErrorInfo) == 4112, "hosts allocate the record");
QX_ASSERT_LAYOUT(offsetof(QXErrorInfo, nCode) == 4 && offsetof(QXErrorInfo, nError) == 8 &&
                     offsetof(QXErrorInfo, szText) == 12,
                 "hosts read the record by offset");
