// SPDX-License-Identifier: MIT
// Tests that name the zone they are in are started with one. A Windows takes none from its environment.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

namespace testing_support {

// Skips its tests where the zone is whatever the system's is.
class InGivenZone : public testing::Test {
 protected:
  void SetUp() override {
    if (std::getenv("TZ") == nullptr) GTEST_SKIP() << "the zone is the system's, which may be another one";
  }
};

}  // namespace testing_support
