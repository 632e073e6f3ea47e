// SPDX-License-Identifier: MIT
#include "framework/platform/modal_message.h"

#include <gtest/gtest.h>

#include "tests/support/ModalBoxes.h"

namespace {

using testing_support::ModalBox;

ModalBox shownBox(const char* text, const char* caption) {
  const auto boxes = testing_support::modalBoxesOf([&] { platform::showModalMessage(text, caption); });
  EXPECT_EQ(boxes.size(), 1u);
  return boxes.at(0);
}

TEST(ModalMessage, IsABoxWithOneButtonAndWithoutAnOwner) {
  const ModalBox box = shownBox("100 %s done", "Copy");
  EXPECT_EQ(box.text, "100 %s done");
  EXPECT_EQ(box.caption, "Copy");
  EXPECT_FALSE(box.owned);
  EXPECT_EQ(box.buttons, 1);
}

TEST(ModalMessage, IsEmptyForNullTexts) {
  const ModalBox box = shownBox(nullptr, nullptr);
  EXPECT_EQ(box.text, "");
  EXPECT_EQ(box.caption, "");
}

}  // namespace
