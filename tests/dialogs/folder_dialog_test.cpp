// SPDX-License-Identifier: MIT
// The class behind the folder browser.
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <thread>

#include "dialogs/FolderDlg.h"
#include "framework/ui/CommonDialogs.h"
#include "tests/dialogs/BrowseControls.h"
#include "tests/dialogs/Driver.h"
#include "tests/dialogs/SettledFolder.h"
#include "tests/dialogs/ThrowingOwner.h"
// Only now:
#include <commctrl.h>
#include <objbase.h>

namespace {

using dialog_test::drive;
using dialog_test::Driver;

class FolderDialog : public testing::Test {
 protected:
  static INT_PTR run(CFolderDlg& dialog, const std::function<void(Driver&, HWND)>& user) {
    return drive([&] { return dialog.DoModal(); },
                 [&](Driver& driver) { user(driver, driver.waitForDialog()); });
  }
  // Confirms `folder` once the dialog is there.
  static INT_PTR confirm(CFolderDlg& dialog, const std::string& folder) {
    return run(dialog, [&](Driver& user, HWND window) {
      waitForFolder(user, window, folder);
      user.press(window, IDOK);
    });
  }
  static void cancel(Driver& user, HWND dialog) { user.press(dialog, IDCANCEL); }

  // Chooses `folder` and answers the dialog's path.
  static std::string roundTrip(const std::string& folder) {
    CFolderDlg dialog(TRUE, folder, nullptr);
    EXPECT_EQ(confirm(dialog, folder), IDOK);
    return dialog.GetPath();
  }

  const SettledFolder scratch;
  const std::string start = scratch.path();
};

enum class Apartment { kNone, kSingleThreaded, kMultithreaded };

// Of the calling thread itself: while any thread of the process is multithreaded, so are implicitly all
// without an apartment.
Apartment apartment() {
  APTTYPE type{};
  APTTYPEQUALIFIER qualifier{};
  if (FAILED(CoGetApartmentType(&type, &qualifier)) || qualifier == APTTYPEQUALIFIER_IMPLICIT_MTA) {
    return Apartment::kNone;
  }
  return type == APTTYPE_MTA ? Apartment::kMultithreaded : Apartment::kSingleThreaded;
}

TEST_F(FolderDialog, OkAnswersOneWithThePathAndCancelTwoWithout) {
  CFolderDlg dialog(TRUE, start, nullptr);
  EXPECT_EQ(dialog.GetPath(), "");
  EXPECT_EQ(confirm(dialog, start), 1);
  EXPECT_EQ(dialog.GetPath(), start);
  EXPECT_EQ(run(dialog, cancel), 2);
  EXPECT_EQ(dialog.GetPath(), "");
}

TEST_F(FolderDialog, TheNewFolderButtonIsThereUnlessSwitchedOff) {
  for (const BOOL hidden : {FALSE, TRUE}) {
    CFolderDlg dialog(hidden, start, nullptr);
    BOOL visible = FALSE;
    run(dialog, [&](Driver& user, HWND window) {
      visible = IsWindowVisible(user.control(window, kNewFolderButton));
      user.press(window, IDCANCEL);
    });
    EXPECT_EQ(visible, !hidden);
  }
}

TEST_F(FolderDialog, TheTitleIsTheInstructionAboveTheTree) {
  CFolderDlg dialog(TRUE, start, nullptr);
  dialog.SetTitle("Where to?");
  std::string instruction;
  run(dialog, [&](Driver& user, HWND window) {
    instruction = user.textOf(user.control(window, kInstruction));
    user.press(window, IDCANCEL);
  });
  EXPECT_EQ(instruction, "Where to?");
}

TEST_F(FolderDialog, TheOwnerIsDisabledMeanwhile) {
  ThrowingOwner owner;
  CFolderDlg dialog(TRUE, start, &owner);
  HWND seen = nullptr;
  BOOL enabled = TRUE;
  run(dialog, [&](Driver& user, HWND window) {
    seen = GetWindow(window, GW_OWNER);
    enabled = IsWindowEnabled(seen);
    user.press(window, IDCANCEL);
  });
  EXPECT_EQ(seen, owner.m_hWnd);
  EXPECT_FALSE(enabled);
  EXPECT_TRUE(IsWindowEnabled(owner.m_hWnd));
}

TEST_F(FolderDialog, WhatTheOwnersHandlerThrowsEndsItAndComesOutOfTheCall) {
  ThrowingOwner owner;
  CFolderDlg dialog(TRUE, start, &owner);
  EXPECT_THROW(
      run(dialog, [&owner](Driver&, HWND) { PostMessageA(owner.m_hWnd, ThrowingOwner::kThrow, 0, 0); }),
      std::runtime_error);
  EXPECT_TRUE(IsWindowEnabled(owner.m_hWnd));
  owner.throwsWhenDisabled = true;
  EXPECT_THROW(drive([&] { return dialog.DoModal(); }, [](Driver&) {}), std::runtime_error);
  EXPECT_TRUE(IsWindowEnabled(owner.m_hWnd));
  owner.DestroyWindow();  // the system's input method keeps an apartment of its own beside a window
  EXPECT_EQ(apartment(), Apartment::kNone);
}

// The status text is invisible, and nevertheless sent.
TEST_F(FolderDialog, EachSelectionBecomesTheStatusText) {
  const std::string other = scratch.folder("others");
  CFolderDlg dialog(TRUE, start, nullptr);
  std::vector<std::string> texts;
  run(dialog, [&](Driver& user, HWND window) {
    waitForFolder(user, window, start);
    for (const std::string& folder : {other, start}) {
      user.send(window, BFFM_SETSELECTIONA, TRUE, reinterpret_cast<LPARAM>(folder.c_str()));
      texts.push_back(user.textOf(user.control(window, kStatusText)));
    }
    user.press(window, IDCANCEL);
  });
  EXPECT_EQ(texts, (std::vector{other, start}));
}

TEST_F(FolderDialog, AnItemThatIsNoFolderLeavesTheStatusText) {
  CFolderDlg dialog(TRUE, start, nullptr);
  std::string status;
  BOOL okEnabled = TRUE;
  run(dialog, [&](Driver& user, HWND window) {
    waitForFolder(user, window, start);
    ITEMIDLIST* computer = nullptr;
    EXPECT_EQ(SHGetSpecialFolderLocation(nullptr, CSIDL_DRIVES, &computer), S_OK);
    user.send(window, BFFM_SETSELECTIONA, FALSE, reinterpret_cast<LPARAM>(computer));
    CoTaskMemFree(computer);
    status = user.textOf(user.control(window, kStatusText));
    okEnabled = IsWindowEnabled(user.control(window, IDOK));
    user.press(window, IDCANCEL);
  });
  EXPECT_EQ(status, start);
  EXPECT_FALSE(okEnabled);
}

TEST_F(FolderDialog, TheApartmentIsLeftAgain) {
  ASSERT_EQ(apartment(), Apartment::kNone);
  EXPECT_EQ(roundTrip(start), start);
  EXPECT_EQ(apartment(), Apartment::kNone);
}

TEST_F(FolderDialog, AThreadThatIsAnApartmentAlreadyStaysOne) {
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  EXPECT_EQ(roundTrip(start), start);
  EXPECT_EQ(apartment(), Apartment::kSingleThreaded);
  CoUninitialize();
  EXPECT_EQ(apartment(), Apartment::kNone);
}

TEST_F(FolderDialog, AMultithreadedApartmentCancelsAtOnceAndStays) {
  INT_PTR result = 0;
  auto after = Apartment::kNone;
  std::thread([&] {
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    CFolderDlg dialog(TRUE, start, nullptr);
    result = dialog.DoModal();
    after = apartment();
    CoUninitialize();
  }).join();
  EXPECT_EQ(result, IDCANCEL);
  EXPECT_EQ(after, Apartment::kMultithreaded);
}

TEST_F(FolderDialog, ADeepFolderMakesTheRoundTrip) {
  std::string deep = start;
  for (std::string name = "a folder in a folder"; deep.size() + 21 <= 255; name += "\\a folder in a folder") {
    deep = scratch.folder(name);
  }
  ASSERT_GT(deep.size(), 230U);
  EXPECT_EQ(roundTrip(deep), deep);
}

TEST_F(FolderDialog, AStartFolderOf300CharactersSelectsNothing) {
  CFolderDlg dialog(TRUE, start + std::string(300, 'x'), nullptr);
  EXPECT_EQ(run(dialog, cancel), IDCANCEL);
}

TEST_F(FolderDialog, ANameOutsideAsciiMakesTheRoundTrip) {
  char name[16] = "";
  ASSERT_GT(WideCharToMultiByte(CP_ACP, 0, L"\u00DCbung", -1, name, sizeof name, nullptr, nullptr), 5);
  const std::string folder = scratch.folder(name);
  EXPECT_EQ(roundTrip(folder), folder);
}

BROWSEINFOA g_asked{};

LPITEMIDLIST WINAPI keepWhatIsAsked(BROWSEINFOA* info) {
  g_asked = *info;
  return nullptr;
}

TEST_F(FolderDialog, AsksForFoldersOfTheFileSystemInTheNewerStyle) {
  g_commonDialogs.browseForFolder = &keepWhatIsAsked;
  for (const auto& [noNewFolder, flags] : {std::pair{FALSE, 0x49U}, std::pair{TRUE, 0x249U}}) {
    CFolderDlg dialog(noNewFolder, start, nullptr);
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_EQ(g_asked.ulFlags, flags);
    EXPECT_EQ(g_asked.hwndOwner, nullptr);
    EXPECT_EQ(g_asked.pidlRoot, nullptr) << "the whole namespace";
    EXPECT_EQ(g_asked.lParam, 0);
    EXPECT_NE(g_asked.pszDisplayName, nullptr);
    EXPECT_NE(g_asked.lpfn, nullptr);
  }
  g_commonDialogs = {};
}

}  // namespace
