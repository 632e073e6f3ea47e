// SPDX-License-Identifier: MIT
// The slots that this compiler calls for the operations of the public header.
#include <gtest/gtest.h>

#include "tests/dll/slot_probe.h"

namespace {

// Calls every operation; the number of calls. The probe is no client, which one of the sanitizers would tell.
__attribute__((no_sanitize("vptr"))) unsigned callEverySlot(TQXIPIFInt* client) {
  unsigned calls = 0;
#define QX_SLOT(number, operation, arguments) \
  client->operation arguments;                \
  ++calls;                                    \
  EXPECT_EQ(SlotProbe::taken(), number##U) << #operation;
#include "tests/dll/slots.inc"
#undef QX_SLOT
  client->DeletingDestructor(0);
  EXPECT_EQ(SlotProbe::taken(), 3U);
  return calls + 1;
}

TEST(SlotOrder, EveryOperationOfTheHeaderGoesToItsSlot) {
  SlotProbe probe;
  EXPECT_EQ(callEverySlot(probe.client()), SlotProbe::kSlots);
}

}  // namespace
