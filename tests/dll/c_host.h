// SPDX-License-Identifier: MIT
// A host in C99: what its compiler makes of the public headers, and how it works with a client.
#pragma once

#include "QXDialogs.h"
#include "QXExports.h"
#include "QXHooks.h"

#if defined(__cplusplus)
extern "C" {
#endif

typedef struct CMember {
  const char* pszName;  // of a record, or of one of its fields
  size_t nOffset;       // 0 for a record
  size_t nSize;
} CMember;

// All that layout.inc lists, in its order; the last one has no name.
const CMember* cLayout(void);

// Where this compiler finds the function of each slot (slots.inc), in bytes; QX_SLOT_COUNT of them.
const size_t* cSlotOffsets(void);

// Sets login data through the table and reads it in the fields. 1 when all of it is found.
int cSetsLogin(TQXIPIFInt* pClient);

// Hooks that count the ends of connections in *pnEnds and call the library's own.
void cInstallHooks(TQXIPIFInt* pClient, QXHooks* pHooks, int* pnEnds);

#if defined(__cplusplus)
}
#endif
