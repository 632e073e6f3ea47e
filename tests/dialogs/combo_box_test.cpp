// SPDX-License-Identifier: MIT
// The combo box of the framework.
#include <gtest/gtest.h>

#include "framework/ui/ComboBox.h"

namespace {

// A box whose length is that of a longer form of its texts, as the system may tell for texts of two-byte
// characters.
class TellsTooMuch : public CComboBox {
 public:
  TellsTooMuch() { Create(CBS_DROPDOWN, {0, 0, 90, 90}, HWND_MESSAGE, 0); }
  ~TellsTooMuch() override { DestroyWindow(); }

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    const LRESULT result = CComboBox::WindowProc(message, wParam, lParam);
    return message == CB_GETLBTEXTLEN && result != CB_ERR ? 2 * result : result;
  }
};

// The rest of the buffer stood behind the text.
TEST(ComboBox, AnEntryEndsWhereItsTextDoes) {
  TellsTooMuch box;
  ASSERT_NE(box.m_hWnd, nullptr);
  ASSERT_EQ(box.AddString("entry"), 0);
  EXPECT_EQ(box.GetLBText(0), "entry");
  EXPECT_EQ(box.GetLBText(1), "");
}

}  // namespace
