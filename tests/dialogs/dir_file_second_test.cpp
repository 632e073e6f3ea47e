// SPDX-License-Identifier: MIT
// A second directory-or-file dialog that the host opens while the first one is up. The dialog has no owner,
// so the host's windows stay enabled.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <utility>

#include "tests/dialogs/DirFileTest.h"
// Only now:
#include <commctrl.h>

namespace {

using dialog_test::DirFileOutcome;
using dialog_test::DirFileTest;
using dialog_test::Driver;
using testing::ElementsAre;
using testing::IsEmpty;

// Opens the second dialog at a message, as a host does when its button is pressed.
class HostWindow : public CWnd {
 public:
  static constexpr UINT kOpenSecond = WM_APP;
  static constexpr UINT kFreeSecond = WM_APP + 1;

  explicit HostWindow(std::string folder) : start(std::move(folder)) {
    CreateEx(0, "STATIC", "", WS_OVERLAPPEDWINDOW, {0, 0, 9, 9}, nullptr, 0);
  }
  ~HostWindow() override { DestroyWindow(); }

  std::string start;  // of the second dialog
  DirFileOutcome outcome;
  std::atomic<bool> freed = false;

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == kFreeSecond) freed = FreeFileDialog(std::exchange(outcome.dialog, nullptr));
    if (message != kOpenSecond) return CWnd::WindowProc(message, wParam, lParam);
    std::snprintf(outcome.path, sizeof outcome.path, "%s", start.c_str());
    const DirFileRequest request{"Second", "OK", this, true, true, kListFolders, 0};
    outcome.result = OpenDirFileDialog(
        request, {outcome.path, &outcome.list, &outcome.count, &outcome.dialog, &outcome.cancelled});
    return 0;
  }
};

class SecondPicker : public DirFileTest {
 protected:
  SecondPicker() {
    addFolder("inner\\deep");
    addFile("a.txt");
    addFile("inner\\b.txt");
  }
  // The window of the second dialog, opened from within the first one.
  HWND open(Driver& user) const {
    PostMessageA(host.m_hWnd, HostWindow::kOpenSecond, 0, 0);
    return user.waitForDialog("Second");
  }

  HostWindow host{folder() + "\\inner"};
};

// The first one's OK had no dialog object any more.
TEST_F(SecondPicker, LeavesTheFirstOneAsItWas) {
  run({}, [this](Driver& user, HWND first) {
    const HWND second = open(user);
    (void)user.waitForList(second, 2);
    user.press(second, IDOK);
    user.waitUntilGone(second);
    user.select(user.waitForList(first, 2), "a.txt");
    user.press(first, IDOK);
  });
  EXPECT_THAT(host.outcome.entries(), ElementsAre(folder() + "\\inner"));
  EXPECT_TRUE(outcome.result);
  EXPECT_THAT(outcome.entries(), ElementsAre(folder() + "\\a.txt"));
}

TEST_F(SecondPicker, LeavesTheFirstOneItsHookWhenItIsFreedBefore) {
  run({}, [this](Driver& user, HWND first) {
    const HWND second = open(user);
    user.press(second, IDCANCEL);
    user.waitUntilGone(second);
    PostMessageA(host.m_hWnd, HostWindow::kFreeSecond, 0, 0);  // taken when the second call has returned
    user.waitUntil("the second dialog to be freed", [this] { return host.freed.load(); });
    user.select(user.waitForList(first, 2), "a.txt");
    user.press(first, IDOK);
  });
  EXPECT_THAT(outcome.entries(), ElementsAre(folder() + "\\a.txt"));
}

// The names that were selected in the one are none of the other's.
TEST_F(SecondPicker, GivesTheFirstOneNoneOfItsNames) {
  run({}, [this](Driver& user, HWND first) {
    const HWND second = open(user);
    user.select(user.waitForList(second, 2), "deep");
    user.press(second, IDOK);
    user.waitUntilGone(second);
    user.press(first, IDOK);
  });
  EXPECT_TRUE(outcome.result);
  EXPECT_THAT(outcome.entries(), IsEmpty());
}

TEST_F(SecondPicker, LetsTheFirstOneBeConfirmedBeforeIt) {
  run({}, [this](Driver& user, HWND first) {
    const HWND second = open(user);
    user.select(user.waitForList(first, 2), "a.txt");
    user.send(first, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED));
    EXPECT_FALSE(IsWindowVisible(first));
    EXPECT_TRUE(IsWindowVisible(second));
    user.press(second, IDCANCEL);
  });
  EXPECT_EQ(host.outcome.cancelled, 1);
  EXPECT_TRUE(outcome.result);
  EXPECT_THAT(outcome.entries(), ElementsAre(folder() + "\\a.txt"));
}

// Both in one folder: the names count from the current directory, which follows the dialog moved last.
TEST_F(SecondPicker, HasAFilterOfItsOwn) {
  host.start = folder();
  std::vector<std::string> inFirst, inSecond;
  run({.mode = kListFiles}, [&](Driver& user, HWND first) {
    const HWND second = open(user);
    for (const auto& [dialog, items] : {std::pair{second, &inSecond}, std::pair{first, &inFirst}}) {
      const HWND list = user.waitForList(dialog, 2);
      user.send(list, LVM_GETSELECTEDCOUNT);
      *items = user.items(list);
    }
    user.press(second, IDCANCEL);
    user.waitUntilGone(second);
    user.press(first, IDCANCEL);
  });
  EXPECT_THAT(inSecond, ElementsAre("inner"));
  EXPECT_THAT(inFirst, ElementsAre("a.txt"));
}

}  // namespace
