// SPDX-License-Identifier: MIT
#include "framework/platform/memory.h"

#include <sys/mman.h>

#include <memory>

namespace platform {

// Only whole large pages: nothing outside of the block is touched.
void expectToFill(void* block, std::size_t size) noexcept {
  constexpr std::size_t kLargePage = std::size_t{2} << 20;
  if (std::align(kLargePage, kLargePage, block, size) == nullptr) return;
  // A system that has none of them does without the advice.
  static_cast<void>(::madvise(block, size - size % kLargePage, MADV_HUGEPAGE));
}

}  // namespace platform
