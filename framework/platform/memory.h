// SPDX-License-Identifier: MIT
// Contract: advice to the system about memory of the program's own.
#pragma once

#include <cstddef>

namespace platform {

// The block, fresh from the heap, is about to be filled from its beginning to its end. Where the system has
// large pages for those who ask, a large block gets them: it is there in a quarter of the time.
void expectToFill(void* block, std::size_t size) noexcept;

}  // namespace platform
