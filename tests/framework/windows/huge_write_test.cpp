// SPDX-License-Identifier: MIT
// More than 4 GiB at once, of pages that nobody has touched, to where nothing is kept.
#include <gtest/gtest.h>

#include "framework/platform/file.h"
#include "framework/windows/windows_api.h"

namespace {

using platform::File;
using platform::FileAccess;
using platform::FileCreation;

// One call of the system has a 32-bit size.
TEST(HugeWrite, IsComplete) {
  constexpr std::size_t kSize = (std::size_t{4} << 30) + 4096;
  void* const data = ::VirtualAlloc(nullptr, kSize, MEM_RESERVE | MEM_COMMIT, PAGE_READONLY);
  ASSERT_NE(data, nullptr);
  File file;
  ASSERT_TRUE(file.open("NUL", FileAccess::write, FileCreation::openExisting));
  EXPECT_TRUE(file.write(data, kSize));
  ::VirtualFree(data, 0, MEM_RELEASE);
}

}  // namespace
