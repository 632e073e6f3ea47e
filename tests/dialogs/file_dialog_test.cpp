// SPDX-License-Identifier: MIT
// The framework's file dialog: the handlers of the classic one, and the walk over what was chosen in either.
#include "framework/ui/FileDialog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "framework/ui/ThreadState.h"
#include "tests/dialogs/Driver.h"
#include "tests/dialogs/FileDialogRun.h"
#include "tests/dialogs/FolderTest.h"

namespace {

using dialog_test::drive;
using dialog_test::Driver;
using dialog_test::show;
using dialog_test::walk;
using testing::ElementsAre;
using testing::IsEmpty;

using FileDialogTest = dialog_test::FolderTest;

// A classic dialog that writes down which handlers ran, with what the dialog said then.
class Classic : public CFileDialog {
 public:
  explicit Classic(const std::string& folder, DWORD flags = 0, bool open = true)
      : CFileDialog(open, "txt", "", flags, "Texts|*.txt|All|*.*||", nullptr, 0, false), m_folder(folder) {
    m_ofn.lpstrInitialDir = m_folder.c_str();
  }

  std::vector<std::string> log;
  int vetoes = 0;
  std::string throwsIn;

 protected:
  bool OnInitDialog() override { return note("init"), CFileDialog::OnInitDialog(); }
  void OnInitDone() override { note("done"); }
  void OnFolderChange() override { note("folder " + GetFolderPath()); }
  int OnFileNameOK() override { return note("ok " + GetPathName()), vetoes-- > 0; }

 private:
  void note(const std::string& what) {
    log.push_back(what);
    if (!throwsIn.empty() && what.starts_with(throwsIn)) throw std::runtime_error("thrown in " + throwsIn);
  }

  const std::string m_folder;
};

TEST_F(FileDialogTest, RunsItsHandlersInTheOrderOfTheClassicDialog) {
  addFile("a.txt");
  Classic dialog(folder());
  EXPECT_EQ(show(dialog,
                 [](Driver& user, HWND window) {
                   user.typeName(window, "a.txt");
                   user.press(window, IDOK);
                 }),
            IDOK);
  EXPECT_THAT(dialog.log, ElementsAre("init", "done", "folder " + folder(), "ok " + folder() + "\\a.txt"));
  EXPECT_THAT(walk(dialog), ElementsAre(folder() + "\\a.txt"));
  EXPECT_EQ(dialog.GetPathName(), folder() + "\\a.txt");
  EXPECT_EQ(dialog.GetFolderPath(), folder());
  EXPECT_EQ(dialog.m_hWnd, nullptr);
}

TEST_F(FileDialogTest, StaysOpenAsLongAsTheNameIsRefused) {
  addFile("a.txt");
  Classic dialog(folder());
  dialog.vetoes = 1;
  EXPECT_EQ(show(dialog,
                 [&](Driver& user, HWND window) {
                   user.typeName(window, "a.txt");
                   user.send(window, WM_COMMAND, IDOK);
                   EXPECT_TRUE(IsWindowVisible(window));
                   EXPECT_EQ(GetWindowLongPtrA(user.child(window, "#32770"), DWLP_MSGRESULT), 1);
                   user.press(window, IDOK);
                 }),
            IDOK);
  EXPECT_EQ(std::count(dialog.log.begin(), dialog.log.end(), "ok " + folder() + "\\a.txt"), 2);
}

TEST_F(FileDialogTest, WalksOverSeveralFilesOfTheClassicDialog) {
  for (const char* name : {"a.txt", "b.txt", "c.txt"}) addFile(name);
  Classic dialog(folder(), OFN_ALLOWMULTISELECT);
  show(dialog, [](Driver& user, HWND window) {
    const HWND list = user.waitForList(window, 3);
    for (const char* name : {"a.txt", "c.txt"}) user.select(list, name);
    user.press(window, IDOK);
  });
  EXPECT_THAT(walk(dialog), testing::UnorderedElementsAre(folder() + "\\a.txt", folder() + "\\c.txt"));
  EXPECT_EQ(dialog.GetFolderPath(), folder());
}

TEST_F(FileDialogTest, AppliesTheFilterAndTheDefaultExtension) {
  for (const char* name : {"a.txt", "b.doc"}) addFile(name);
  Classic dialog(folder());
  show(dialog, [](Driver& user, HWND window) {
    (void)user.waitForList(window, {"a.txt"});
    user.typeName(window, "a");
    user.press(window, IDOK);
  });
  EXPECT_THAT(walk(dialog), ElementsAre(folder() + "\\a.txt"));
}

TEST_F(FileDialogTest, HasNothingChosenAfterACancel) {
  addFile("a.txt");
  Classic dialog(folder());
  EXPECT_EQ(show(dialog,
                 [](Driver& user, HWND window) {
                   user.typeName(window, "a.txt");
                   user.press(window, IDCANCEL);
                 }),
            IDCANCEL);
  EXPECT_THAT(walk(dialog), IsEmpty());
}

class FileDialogHandler : public dialog_test::FolderTest, public testing::WithParamInterface<const char*> {};

// The system's frames lie between the handler and DoModal.
TEST_P(FileDialogHandler, ThatThrowsEndsTheDialogAndReachesTheCaller) {
  addFile("a.txt");
  Classic dialog(folder());
  dialog.throwsIn = GetParam();
  std::string caught;
  drive(
      [&] {
        try {
          dialog.DoModal();
        } catch (const std::runtime_error& error) {
          caught = error.what();
        }
      },
      [&dialog](Driver& user) {
        if (dialog.throwsIn != "ok") return;
        const HWND window = user.waitForDialog();
        user.typeName(window, "a.txt");
        user.press(window, IDOK);
      });
  EXPECT_EQ(caught, "thrown in " + dialog.throwsIn);
  EXPECT_EQ(AfxGetThreadState()->m_pModalRun, nullptr);
  EXPECT_EQ(AfxGetThreadState()->m_pAlternateWndInit, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Handlers, FileDialogHandler, testing::Values("init", "done", "folder", "ok"));

TEST_F(FileDialogTest, DisablesItsOwnerWhileItIsShown) {
  const HWND owner = CreateWindowExA(0, "STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                                     nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
  const HWND child = CreateWindowExA(0, "STATIC", "", WS_CHILD, 0, 0, 10, 10, owner, nullptr,
                                     GetModuleHandleA(nullptr), nullptr);
  for (const bool newer : {false, true}) {
    CFileDialog dialog(true, nullptr, "", 0, "", child, 0, newer);
    bool enabled = true;
    HWND dialogsOwner = nullptr;
    show(dialog, [&](Driver& user, HWND window) {
      enabled = IsWindowEnabled(owner);
      dialogsOwner = GetWindow(window, GW_OWNER);
      user.press(window, IDCANCEL);
    });
    EXPECT_FALSE(enabled) << newer;
    EXPECT_EQ(dialogsOwner, owner) << newer;
    EXPECT_TRUE(IsWindowEnabled(owner)) << newer;
  }
  DestroyWindow(owner);
}

// The dialog goes with its owner.
TEST_F(FileDialogTest, IsACancelWhenItsOwnerIsDestroyed) {
  for (const bool open : {true, false}) {
    for (const bool newer : {false, true}) {
      const HWND owner = CreateWindowExA(0, "STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                                         nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
      CFileDialog dialog(open, nullptr, "given.txt", 0, "", owner, 0, newer);
      EXPECT_EQ(show(dialog, [owner](Driver&, HWND) { PostMessageA(owner, WM_CLOSE, 0, 0); }), IDCANCEL)
          << newer;
      EXPECT_FALSE(IsWindow(owner));
      EXPECT_THAT(walk(dialog), IsEmpty());
      EXPECT_EQ(dialog.m_hWnd, nullptr);
    }
  }
}

TEST_F(FileDialogTest, HasNothingChosenAfterACancelThatFollowsAnOk) {
  addFile("a.txt");
  Classic dialog(folder());
  EXPECT_EQ(show(dialog,
                 [](Driver& user, HWND window) {
                   user.typeName(window, "a.txt");
                   user.press(window, IDOK);
                 }),
            IDOK);
  EXPECT_EQ(show(dialog, [](Driver& user, HWND window) { user.press(window, IDCANCEL); }), IDCANCEL);
  EXPECT_THAT(walk(dialog), IsEmpty());
  EXPECT_EQ(dialog.GetFolderPath(), "");
}

// Windows of other processes have properties but no procedure of ours.
TEST(WindowOfAnotherProcess, CannotBeTakenOver) {
  CWnd window;
  EXPECT_FALSE(window.SubclassWindow(GetDesktopWindow()));
  EXPECT_EQ(window.m_hWnd, nullptr);
  EXPECT_EQ(CWnd::FromHandlePermanent(GetDesktopWindow()), nullptr);
}

// The owner is disabled for the dialog; what owns the owner would take the user's clicks.
TEST_F(FileDialogTest, DisablesTheWindowAboveItsOwner) {
  const HWND top = CreateWindowExA(0, "STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200, nullptr,
                                   nullptr, GetModuleHandleA(nullptr), nullptr);
  const HWND owner = CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 100, 100, top, nullptr,
                                     GetModuleHandleA(nullptr), nullptr);
  for (const bool newer : {false, true}) {
    CFileDialog dialog(true, nullptr, "", 0, "", owner, 0, newer);
    bool topEnabled = true;
    show(dialog, [&](Driver& user, HWND window) {
      topEnabled = IsWindowEnabled(top);
      user.press(window, IDCANCEL);
    });
    EXPECT_FALSE(topEnabled) << newer;
    EXPECT_TRUE(IsWindowEnabled(top)) << newer;
    EXPECT_TRUE(IsWindowEnabled(owner)) << newer;
  }
  DestroyWindow(top);
}

}  // namespace
