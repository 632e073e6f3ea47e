// SPDX-License-Identifier: MIT
// The driver of the dialog tests itself.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "tests/dialogs/Driver.h"

namespace {

using dialog_test::drive;
using dialog_test::Driver;

int showBox(HWND owner = nullptr) { return MessageBoxA(owner, "Save it?", "Editor", MB_OKCANCEL); }

TEST(DialogDriver, AnswersAMessageBox) {
  dialog_test::Box seen;
  const int result =
      drive([] { return showBox(); }, [&seen](Driver& user) { seen = user.answerBox(nullptr); });
  EXPECT_EQ(result, IDOK);
  EXPECT_EQ(seen.caption, "Editor");
  EXPECT_EQ(seen.text, "Save it?");
}

TEST(DialogDriver, PressesTheButtonThatIsNamed) {
  const int result =
      drive([] { return showBox(); }, [](Driver& user) { user.press(user.waitForDialog(), IDCANCEL); });
  EXPECT_EQ(result, IDCANCEL);
}

TEST(DialogDriver, FailsTheTestAndClosesTheBoxWhenTheUserFindsNothingToPress) {
  int result = 0;
  EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(
      result =
          drive([] { return showBox(); }, [](Driver& user) { (void)user.control(user.waitForDialog(), 77); }),
      "no control 77");
  EXPECT_EQ(result, IDCANCEL);
}

TEST(DialogDriver, FailsTheTestWhenNoDialogComes) {
  EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(drive([] {}, [](Driver& user) { (void)user.waitForDialog(); }),
                                         "ended before a dialog");
}

}  // namespace
