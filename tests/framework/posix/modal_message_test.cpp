// SPDX-License-Identifier: MIT
#include "framework/platform/modal_message.h"

#include <gtest/gtest.h>

namespace {

std::string shown(const char* text, const char* caption) {
  testing::internal::CaptureStderr();
  platform::showModalMessage(text, caption);
  return testing::internal::GetCapturedStderr();
}

TEST(ModalMessage, IsALineOnStandardError) {
  EXPECT_EQ(shown("100 %s done", "Copy"), "Copy: 100 %s done\n");
  EXPECT_EQ(shown(nullptr, nullptr), ": \n");
}

}  // namespace
