// SPDX-License-Identifier: MIT
// What the fragments of C in the documents stand in: each is a block of its own in place of the last line.
#include <stdio.h>
#include <stdlib.h>

#include "QXExports.h"
#include "QXHooks.h"

static void fragment(TQXIPIFInt* pClient) {
  // BLOCK
}
