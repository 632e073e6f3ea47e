// SPDX-License-Identifier: MIT
// Stands in for an SDK: what QXHooks.h needs of a C library.
#pragma once
#include <stddef.h>
#if defined(__cplusplus)
extern "C"
#endif
    void*
    memcpy(void* target, const void* source, size_t size);
