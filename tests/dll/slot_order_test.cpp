// SPDX-License-Identifier: MIT
// The slots that this compiler calls for the operations of the public header.
#include <gtest/gtest.h>

#include "tests/dll/slot_probe.h"

namespace {

TEST(SlotOrder, EveryOperationOfTheHeaderGoesToItsSlot) {
  SlotProbe probe;
  TQXIPIFInt* const client = probe.client();
  unsigned calls = 0;
#define QX_SLOT(number, operation, arguments) \
  client->operation arguments;                \
  ++calls;                                    \
  EXPECT_EQ(SlotProbe::taken(), number##U) << #operation;
#include "tests/dll/slots.inc"
#undef QX_SLOT
  client->DeletingDestructor(0);
  EXPECT_EQ(SlotProbe::taken(), 3U);
  EXPECT_EQ(calls + 1, SlotProbe::kSlots);
}

}  // namespace
