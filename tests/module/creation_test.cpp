// SPDX-License-Identifier: MIT
// A client that cannot be made.
#include <gtest/gtest.h>

#include <cstring>

#include "QXExports.h"
#include "tests/support/AllocationWatch.h"

namespace {

std::uint32_t moduleCount() {
  DllAddRef();
  return DllRelease();
}

TEST(Creation, AnswersNullWhicheverOfItsAllocationsFails) {
  QXErrorInfo record{};
  TQXIPIFInt* client = nullptr;
  long held = 0;
  const int allocations = testing_support::failEachAllocation(
      [&] {
        held = testing_support::blocksHeld();
        client = CreateQXIPIFInstance(&record);
      },
      [&] {
        EXPECT_EQ(client, nullptr);
        EXPECT_EQ(testing_support::blocksHeld(), held);
        EXPECT_EQ(moduleCount(), 0u);
        EXPECT_EQ(record.bSet, 0u);
      });
  EXPECT_GE(allocations, 2) << "the client and its session at least";
  ASSERT_NE(client, nullptr);
  EXPECT_EQ(moduleCount(), 1u);
  EXPECT_EQ(FreeQXIPIFInstance(client), 1);
  EXPECT_EQ(moduleCount(), 0u);
  EXPECT_EQ(testing_support::blocksHeld(), held);
}

}  // namespace
