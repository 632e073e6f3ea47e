// SPDX-License-Identifier: MIT
// CXFileDialog on the screen: its start, the history, the confirmation.
#include <stdexcept>

#include "tests/dialogs/XFileDialogTest.h"
// Only now:
#include <cderr.h>

namespace {

using dialog_test::Driver;

constexpr DWORD kFlags = OFN_HIDEREADONLY | OFN_ENABLESIZING | OFN_FILEMUSTEXIST;

class XFileDialog : public XFileDialogTest {
 protected:
  // What the user reads in the history box.
  std::vector<std::string> historyOf(const Driver& user, const ShownFileDialog& shown) const {
    std::vector<std::string> texts;
    const LRESULT count = user.send(shown.history, CB_GETCOUNT);
    for (LRESULT i = 0; i < count; ++i) {
      char text[1024] = "";
      user.send(shown.history, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
      texts.emplace_back(text);
    }
    return texts;
  }
  // Opens the history's list and takes the entry by keys.
  static void pick(const Driver& user, const ShownFileDialog& shown, int entry) {
    const HWND edit = user.child(shown.history, "Edit");
    user.send(shown.history, CB_SETCURSEL, static_cast<WPARAM>(-1));
    user.send(shown.history, CB_SHOWDROPDOWN, TRUE);
    for (int i = 0; i <= entry; ++i) PostMessageA(edit, WM_KEYDOWN, VK_DOWN, 0);
    PostMessageA(edit, WM_KEYDOWN, VK_RETURN, 0);
    user.waitUntil("the end of the list",
                   [&] { return user.send(shown.history, CB_GETDROPPEDSTATE) == FALSE; });
    EXPECT_EQ(user.send(shown.history, CB_GETCURSEL), entry);
  }
  static std::string nameText(const Driver& user, const ShownFileDialog& shown) {
    return user.textOf(user.control(shown.dialog, 1148));
  }
  static std::string folderOf(const Driver& user, const ShownFileDialog& shown) {
    char folder[1024] = "";
    user.send(shown.dialog, CDM_GETFOLDERPATH, sizeof folder, reinterpret_cast<LPARAM>(folder));
    return folder;
  }

  static void waitForFolder(const Driver& user, const ShownFileDialog& shown, const std::string& folder) {
    user.waitUntil("the folder " + folder, [&] { return folderOf(user, shown) == folder; });
  }

  CXFileDialog dialog{true, nullptr, nullptr, kFlags, nullptr, nullptr};
};

// Without the stand-in the system is asked with a record that it may refuse; then nothing is shown.
TEST_F(XFileDialog, IsACancelWhereTheSystemRefusesTheRecord) {
  const FileDialogStandIn refusing([](OPENFILENAMEA& record) {
    record.lStructSize = 1;
    const BOOL result = GetOpenFileNameA(&record);
    EXPECT_EQ(CommDlgExtendedError(), DWORD{CDERR_STRUCTSIZE});
    return result;
  });
  EXPECT_EQ(dialog.DoModal(), 2);
  EXPECT_EQ(dialog.m_ofn.lStructSize, 152u);
}

TEST_F(XFileDialog, StartsWithTheExistingFoldersOfTheHistory) {
  profile.write("Folder0", gone);
  profile.write("Folder1", other);
  profile.write("Folder2", start);
  profile.write("Folder", start);
  EXPECT_EQ(run(dialog,
                [this](Driver& user, const ShownFileDialog& shown) {
                  EXPECT_THAT(historyOf(user, shown), testing::ElementsAre(other, start));
                  EXPECT_EQ(user.textOf(shown.history), other) << "item 0, whatever text was kept";
                }),
            2);
}

TEST_F(XFileDialog, StartsWithTheKeptTextWhereTheListIsEmpty) {
  profile.write("Folder", "kept");
  run(dialog, [this](Driver& user, const ShownFileDialog& shown) {
    EXPECT_THAT(historyOf(user, shown), testing::IsEmpty());
    EXPECT_EQ(user.textOf(shown.history), "kept");
  });
}

TEST_F(XFileDialog, HasTheTitleThatItIsGiven) {
  dialog.m_strTitle = "Choose a text";
  run(dialog, [](Driver& user, const ShownFileDialog& shown) {
    EXPECT_EQ(user.textOf(shown.dialog), "Choose a text");
  });
}

TEST_F(XFileDialog, HasTheSystemsTitleOtherwise) {
  run(dialog,
      [](Driver& user, const ShownFileDialog& shown) { EXPECT_EQ(user.textOf(shown.dialog), "Open"); });
}

TEST_F(XFileDialog, ConfirmingPutsTheFolderIntoTheHistory) {
  profile.write("Folder0", other);
  const int result = run(dialog, [](Driver& user, const ShownFileDialog& shown) {
    user.typeName(shown.dialog, "a.txt");
    user.press(shown.dialog, IDOK);
    user.waitUntilGone(shown.dialog);
  });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(dialog.GetPathName(), start + "\\a.txt");
  EXPECT_EQ(profile.read("Folder0"), start);
  EXPECT_EQ(profile.read("Folder1"), other);
  EXPECT_EQ(profile.read("Folder2"), "(none)");
  EXPECT_EQ(profile.read("Folder"), start) << "the current text";
}

TEST_F(XFileDialog, ConfirmingTakesTheFolderThatIsShown) {
  profile.write("Folder0", start);
  run(dialog, [this](Driver& user, const ShownFileDialog& shown) {
    user.typeName(shown.dialog, other);
    user.press(shown.dialog, IDOK);
    waitForFolder(user, shown, other);
    user.typeName(shown.dialog, "c.txt");
    user.press(shown.dialog, IDOK);
    user.waitUntilGone(shown.dialog);
  });
  EXPECT_EQ(profile.read("Folder0"), other);
  EXPECT_EQ(profile.read("Folder1"), start);
}

TEST_F(XFileDialog, CancellingLeavesTheHistory) {
  profile.write("Folder0", other);
  EXPECT_EQ(run(dialog, [](Driver&, const ShownFileDialog&) {}), 2);
  EXPECT_EQ(profile.read("Folder0"), other);
  EXPECT_EQ(profile.read("Folder1"), "(none)");
  EXPECT_EQ(profile.read("Folder"), "(none)");
}

TEST_F(XFileDialog, PickingAnEntryMovesTheDialogThereAndKeepsTheTypedName) {
  profile.write("Folder0", start);
  profile.write("Folder1", other);
  const int result = run(dialog, [this](Driver& user, const ShownFileDialog& shown) {
    user.typeName(shown.dialog, "typed");
    pick(user, shown, 1);
    waitForFolder(user, shown, other);
    user.waitUntil("the typed name", [&] { return nameText(user, shown) == "typed"; });
    (void)user.waitForList(shown.dialog, std::vector<std::string>{"c.txt"});
  });
  EXPECT_EQ(result, 2);
}

TEST_F(XFileDialog, PickingAnEntryKeepsSoMuchOfALongName) {
  profile.write("Folder0", other);
  run(dialog, [this](Driver& user, const ShownFileDialog& shown) {
    user.typeName(shown.dialog, std::string(600, 'x'));
    pick(user, shown, 0);
    user.waitUntil("519 characters", [&] { return nameText(user, shown) == std::string(519, 'x'); });
    EXPECT_EQ(folderOf(user, shown), other);
  });
}

TEST_F(XFileDialog, PickingAnEntryThatHasGoneDoesNothing) {
  profile.write("Folder0", other);
  run(dialog, [this](Driver& user, const ShownFileDialog& shown) {
    std::filesystem::remove_all(other);
    user.typeName(shown.dialog, "typed");
    pick(user, shown, 0);
    EXPECT_EQ(folderOf(user, shown), start);
    EXPECT_EQ(nameText(user, shown), "typed");
  });
}

TEST_F(XFileDialog, PickingNothingDoesNothing) {
  profile.write("Folder0", other);
  run(dialog, [this](Driver& user, const ShownFileDialog& shown) {
    user.send(shown.history, CB_SETCURSEL, static_cast<WPARAM>(-1));
    user.send(shown.inner, WM_COMMAND, MAKEWPARAM(1002, CBN_SELENDOK),
              reinterpret_cast<LPARAM>(shown.history));
    EXPECT_EQ(folderOf(user, shown), start);
  });
}

TEST_F(XFileDialog, CanBeShownAgain) {
  for (int i = 0; i < 2; ++i) {
    run(dialog, [](Driver& user, const ShownFileDialog& shown) {
      user.typeName(shown.dialog, "b.txt");
      user.press(shown.dialog, IDOK);
      user.waitUntilGone(shown.dialog);
    });
    EXPECT_EQ(dialog.GetPathName(), start + "\\b.txt");
    EXPECT_EQ(dialog.m_hWnd, nullptr);
  }
  EXPECT_EQ(profile.read("Folder1"), "(none)");
}

TEST_F(XFileDialog, ATemplateWithoutTheHistoryBoxIsAnError) {
  dialog.m_ofn.lpTemplateName = "IDD_NOHISTORY";
  const FileDialogStandIn plainSize(&showWithPlainSize);
  EXPECT_THROW(dialog.DoModal(), std::runtime_error);
}

}  // namespace
