// SPDX-License-Identifier: MIT
// More than 4 GiB at once, of pages that nobody has touched, to where nothing is kept.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include "framework/platform/file.h"

namespace {

using platform::File;
using platform::FileAccess;
using platform::FileCreation;

// One call of the system takes less than 2 GiB, so this takes several.
TEST(HugeWrite, IsComplete) {
  constexpr std::size_t kSize = std::size_t{5} << 30;
  void* const data = ::mmap(nullptr, kSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(data, MAP_FAILED);
  File file;
  ASSERT_TRUE(file.open("/dev/null", FileAccess::write, FileCreation::openExisting));
  EXPECT_TRUE(file.write(data, kSize));
  ::munmap(data, kSize);
}

}  // namespace
