// SPDX-License-Identifier: MIT
// What the directory-or-file dialog holds of the shell's is given back when it goes, however it goes.
#include <gtest/gtest.h>

#include <utility>

#include "framework/ui/Com.h"
#include "tests/dialogs/DirFileTest.h"
// Only now:
#include <commctrl.h>
#include <shlobj.h>

namespace {

using dialog_test::DirFileTest;
using dialog_test::Driver;
using dialog_test::kNoFilter;

HWND g_ending = nullptr;

// At a deletion from the list the dialog ends and the list's view goes away under it.
LRESULT CALLBACK endDialog(int code, WPARAM wParam, LPARAM lParam) {
  const auto& call = *reinterpret_cast<const CWPSTRUCT*>(lParam);
  if (code == HC_ACTION && call.message == LVM_DELETEITEM) {
    EndDialog(std::exchange(g_ending, nullptr), IDCANCEL);
    DestroyWindow(GetParent(call.hwnd));
  }
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

class DirFileEnd : public DirFileTest {
 protected:
  DirFileEnd() {
    for (const char* name : {"A", "B", "C", "D"}) addFolder(name);
    addFile("x.txt");
  }

  // How many still have the view when the dialog has gone; `user` has it go.
  ULONG ownersAfter(std::uint32_t mode, const std::function<void(Driver&, HWND dialog, HWND list)>& user) {
    IShellView* view = nullptr;
    run({.mode = mode}, [&](Driver& driver, HWND dialog) {
      const HWND list = driver.waitForList(dialog, 5);
      constexpr UINT kGetShellBrowser = WM_USER + 7;
      auto* const browser = reinterpret_cast<IShellBrowser*>(driver.send(dialog, kGetShellBrowser));
      EXPECT_EQ(browser->QueryActiveShellView(&view), S_OK);
      user(driver, dialog, list);
    });
    EXPECT_EQ(outcome.cancelled, 1);
    EXPECT_TRUE(FreeFileDialog(std::exchange(outcome.dialog, nullptr)));
    return view->Release();
  }
  // The same, where the deletion that comes of `message` ends the dialog.
  ULONG ownersAfterDeletion(std::uint32_t mode, UINT message) {
    const HHOOK hook = SetWindowsHookExA(WH_CALLWNDPROC, &endDialog, nullptr, GetCurrentThreadId());
    const ULONG owners = ownersAfter(mode, [message](Driver& user, HWND dialog, HWND list) {
      g_ending = dialog;
      SendNotifyMessageA(list, message, 0, 0);  // its answer may never come
      user.waitUntilGone(dialog);
    });
    UnhookWindowsHookEx(hook);
    EXPECT_EQ(g_ending, nullptr) << "it has ended otherwise";
    return owners;
  }
};

TEST_F(DirFileEnd, LeavesTheShellItsView) {
  const auto cancel = [](Driver& user, HWND dialog, HWND list) {
    user.send(list, LVM_GETSELECTEDCOUNT);
    user.press(dialog, IDCANCEL);
  };
  EXPECT_EQ(ownersAfter(kListFiles, cancel), 0U);
}

// The list's end was not seen while the filter was at work, and its view stayed for ever. The system itself
// may keep one that goes like this.
TEST_F(DirFileEnd, LeavesTheShellItsViewInAPassOfTheFilter) {
  EXPECT_EQ(ownersAfterDeletion(kListFiles, LVM_GETSELECTEDCOUNT),
            ownersAfterDeletion(kNoFilter, LVM_DELETEITEM));
}

}  // namespace
