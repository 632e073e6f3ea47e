// SPDX-License-Identifier: MIT
// The directory-or-file dialog as its user sees it: places, sizes and texts of its controls.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "dialogs/DirFileOpen.h"
#include "framework/ui/CommonDialogs.h"
#include "tests/dialogs/DirFileTest.h"

namespace {

using dialog_test::DirFileOptions;
using dialog_test::DirFileTest;
using dialog_test::drive;
using dialog_test::Driver;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;

struct Place {
  RECT rect{};
  bool visible = false;
};

constexpr int kControls[] = {IDOK,           IDCANCEL,       kListArea,    kFileNameEdit,
                             kFileNameLabel, kFileTypeLabel, kFileTypeBox, kFolderEdit};

Place placeOf(HWND dialog, HWND control) {
  Place place;
  GetWindowRect(control, &place.rect);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place.rect), 2);
  place.visible = (GetWindowLongPtrA(control, GWL_STYLE) & WS_VISIBLE) != 0;
  return place;
}

struct Window {
  std::map<int, Place> controls;
  RECT frame{};

  explicit Window(HWND dialog = nullptr) {
    if (dialog == nullptr) return;
    GetWindowRect(dialog, &frame);
    for (const int id : kControls) controls[id] = placeOf(dialog, GetDlgItem(dialog, id));
  }
  [[nodiscard]] const RECT& at(int id) const { return controls.at(id).rect; }
  [[nodiscard]] bool visible(int id) const { return controls.at(id).visible; }
  [[nodiscard]] int width(int id) const { return at(id).right - at(id).left; }
  [[nodiscard]] int height(int id) const { return at(id).bottom - at(id).top; }
};

// The system's own dialog, before anything is moved.
class Untouched : public CFileDialog {
 public:
  explicit Untouched(const char* filter) : CFileDialog(true, nullptr, "", 0, filter, nullptr, 136) {}
};

Window shown(CFileDialog& dialog) {
  Window window;
  drive([&] { return dialog.DoModal(); },
        [&](Driver& user) {
          const HWND real = user.waitForDialog();
          window = Window(real);
          user.press(real, IDCANCEL);
        });
  return window;
}

class DirFileWindow : public DirFileTest {
 protected:
  Window shownWith(bool files, const char* filter) {
    CDirFileOpen dialog("Title", "Choose", this, files, true, 1, folder().c_str(), 0, filter, nullptr);
    return shown(dialog);
  }
  static Window untouched(const char* filter) {
    Untouched dialog(filter);
    return shown(dialog);
  }
};

constexpr char kFilter[] = "Texts|*.txt||";

TEST_F(DirFileWindow, HasOkLeftOfCancelOnItsRow) {
  const Window window = shownWith(false, "");
  const Window before = untouched("");
  EXPECT_EQ(window.at(IDCANCEL).top, before.at(IDCANCEL).top);
  EXPECT_EQ(window.at(IDCANCEL).left, before.at(IDCANCEL).left);
  EXPECT_EQ(window.at(IDOK).top, before.at(IDCANCEL).top);
  EXPECT_EQ(window.at(IDOK).left, before.at(IDCANCEL).left - before.width(IDOK) - 4);
  EXPECT_EQ(window.width(IDOK), before.width(IDOK));
  EXPECT_EQ(window.height(IDOK), before.height(IDOK));
}

// It was one row high: what it is to grow by was taken for its height.
TEST_F(DirFileWindow, HasAListAreaThatGrowsTowardsCancel) {
  const Window window = shownWith(false, "");
  const Window before = untouched("");
  const int added = std::abs(before.at(kListArea).bottom - (before.at(IDCANCEL).top - 45)) + 25;
  EXPECT_EQ(window.height(kListArea), before.height(kListArea) + added);
  EXPECT_EQ(window.at(IDCANCEL).top - window.at(kListArea).bottom, 4) << "the buttons are free";
  EXPECT_EQ(window.width(kListArea), before.width(kListArea));
  EXPECT_EQ(window.at(kListArea).top, before.at(kListArea).top);
}

TEST_F(DirFileWindow, HidesTheFileNameAndTheFileTypes) {
  const Window window = shownWith(false, "");
  for (const int id : {kFileNameEdit, kFileNameLabel, kFileTypeLabel, kFileTypeBox, kFolderEdit})
    EXPECT_FALSE(window.visible(id)) << id;
  EXPECT_TRUE(window.visible(IDOK));
  EXPECT_TRUE(window.visible(IDCANCEL));
}

TEST_F(DirFileWindow, HasAnEmptyFileNameLabelFurtherDown) {
  const Window window = shownWith(false, "");
  const Window before = untouched("");
  const RECT& label = window.at(kFileNameLabel);
  EXPECT_EQ(label.left, before.at(kFileNameLabel).left);
  EXPECT_EQ(label.top, before.at(kFileNameLabel).top + 14);
  EXPECT_EQ(label.bottom, before.at(kFileNameLabel).bottom + 14);
  EXPECT_EQ(label.right, before.at(kFileNameLabel).right + 20);
}

TEST_F(DirFileWindow, HasAFolderEditInPlaceOfTheFileName) {
  const Window window = shownWith(false, "");
  const Window before = untouched("");
  const RECT& edit = window.at(kFolderEdit);
  EXPECT_EQ(edit.left, before.at(kFileNameLabel).left);
  EXPECT_EQ(edit.right, before.at(kFileNameEdit).right - 70);
  EXPECT_EQ(edit.top, before.at(kFileNameEdit).top + 30);
  EXPECT_EQ(edit.bottom, before.at(kFileNameEdit).bottom + 30);
}

struct Layout {
  const char* name;
  bool files;
  const char* filter;
  int heightAdded;
};

class DirFileTypes : public DirFileWindow, public testing::WithParamInterface<Layout> {};

TEST_P(DirFileTypes, AreShownInFileModeWithAFilterOnly) {
  const Layout& layout = GetParam();
  const Window window = shownWith(layout.files, layout.filter);
  const Window before = untouched(layout.filter);
  EXPECT_EQ(window.visible(kFileTypeBox), layout.heightAdded != 0);
  EXPECT_EQ(window.visible(kFileTypeLabel), layout.heightAdded != 0);
  EXPECT_EQ(window.frame.bottom - window.frame.top,
            before.frame.bottom - before.frame.top + layout.heightAdded);
}

INSTANTIATE_TEST_SUITE_P(Layouts, DirFileTypes,
                         testing::Values(Layout{"FilesWithAFilter", true, kFilter, 35},
                                         Layout{"FilesWithoutOne", true, nullptr, 0},
                                         Layout{"FilesWithAnEmptyOne", true, "", 0},
                                         Layout{"FoldersWithAFilter", false, kFilter, 0}),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_F(DirFileWindow, HasTheFileTypesBelowTheFolderEdit) {
  const Window window = shownWith(true, kFilter);
  const Window before = untouched(kFilter);
  const RECT& label = window.at(kFileTypeLabel);
  EXPECT_EQ(label.top, before.at(kFileTypeLabel).top + 25);
  EXPECT_EQ(label.left, before.at(kFileTypeLabel).left);
  EXPECT_EQ(window.at(kFileTypeBox).left, label.left);
  EXPECT_EQ(window.at(kFileTypeBox).top, label.bottom);
  EXPECT_EQ(window.width(kFileTypeBox), before.width(kFileTypeBox));
  EXPECT_EQ(window.at(IDCANCEL).top, label.bottom - 2);
  EXPECT_EQ(window.at(IDCANCEL).left, before.at(IDCANCEL).left);
  EXPECT_EQ(window.at(IDOK).top, label.bottom - 2);
  EXPECT_EQ(window.at(IDOK).left, window.at(IDCANCEL).left - window.width(IDOK) - 4);
  EXPECT_EQ(window.at(kFolderEdit).right, window.at(IDCANCEL).right);
}

TEST_F(DirFileWindow, StandsInTheMiddleOfTheScreenWithoutAnOwner) {
  const RECT frame = shownWith(false, "").frame;
  RECT work{};
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
  EXPECT_EQ(frame.left, (work.left + work.right - (frame.right - frame.left)) / 2);
  EXPECT_EQ(frame.top, (work.top + work.bottom - (frame.bottom - frame.top)) / 2);
}

TEST_F(DirFileWindow, StandsInTheMiddleOfItsOwner) {
  const HWND owner = CreateWindowExA(0, "STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 20, 800, 500,
                                     nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
  CDirFileOpen dialog("Title", "Choose", this, false, true, 1, folder().c_str(), 0, "", owner);
  const RECT frame = shown(dialog).frame;
  EXPECT_TRUE(IsWindowEnabled(owner));
  DestroyWindow(owner);
  EXPECT_EQ(frame.left, 10 + (800 - (frame.right - frame.left)) / 2);
  EXPECT_EQ(frame.top, 20 + (500 - (frame.bottom - frame.top)) / 2);
}

TEST_F(DirFileWindow, HasTheHostsTextsAndFollowsTheFolderInItsEdit) {
  addFolder("sub");
  std::string title, ok, label, edit, editInSub;
  run({.title = "Pick it", .okText = "Take"}, [&](Driver& user, HWND dialog) {
    title = user.textOf(dialog);
    ok = user.textOf(user.control(dialog, IDOK));
    label = user.textOf(user.control(dialog, kFileNameLabel));
    edit = user.textOf(user.control(dialog, kFolderEdit));
    user.doubleClick(user.waitForList(dialog, {"sub"}), "sub");
    user.waitUntil("the folder to be followed", [&] {
      editInSub = user.textOf(user.control(dialog, kFolderEdit));
      return editInSub != edit;
    });
    user.press(dialog, IDCANCEL);
  });
  EXPECT_EQ(title, "Pick it");
  EXPECT_EQ(ok, "Take");
  EXPECT_EQ(label, "");
  EXPECT_EQ(edit, folder());
  EXPECT_EQ(editInSub, folder() + "\\sub");
}

TEST_F(DirFileWindow, HasAnEditWithASunkenEdgeAndTheDialogsFontBehindTheListArea) {
  LONG_PTR style = 0, exStyle = 0;
  LRESULT font = 0, dialogsFont = -1;
  HWND before = nullptr, listArea = nullptr;
  run({}, [&](Driver& user, HWND dialog) {
    const HWND edit = user.control(dialog, kFolderEdit);
    style = GetWindowLongPtrA(edit, GWL_STYLE);
    exStyle = GetWindowLongPtrA(edit, GWL_EXSTYLE);
    font = user.send(edit, WM_GETFONT);
    dialogsFont = user.send(user.control(dialog, kFileNameEdit), WM_GETFONT);
    before = GetWindow(edit, GW_HWNDPREV);
    listArea = user.control(dialog, kListArea);
    user.press(dialog, IDCANCEL);
  });
  EXPECT_EQ(style & (WS_CHILD | WS_TABSTOP | WS_VISIBLE), WS_CHILD | WS_TABSTOP);
  EXPECT_TRUE(exStyle & WS_EX_CLIENTEDGE);
  EXPECT_EQ(font, dialogsFont);
  EXPECT_EQ(before, listArea);
}

// Where the whole dialog is to be seen: in the middle of an owner that is seen, otherwise of the work area.
TEST_F(DirFileWindow, StandsWithinTheWorkArea) {
  RECT work{};
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
  const auto frameOver = [this](int left, int top, DWORD style) {
    const HWND owner = CreateWindowExA(0, "STATIC", "", WS_OVERLAPPEDWINDOW | style, left, top, 100, 100,
                                       nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    CDirFileOpen dialog("Title", "Choose", this, false, true, 1, folder().c_str(), 0, "", owner);
    const RECT frame = shown(dialog).frame;
    DestroyWindow(owner);
    return frame;
  };
  const RECT upperLeft = frameOver(work.left - 50, work.top - 50, WS_VISIBLE);
  EXPECT_EQ(upperLeft.left, work.left);
  EXPECT_EQ(upperLeft.top, work.top);
  const RECT lowerRight = frameOver(work.right - 50, work.bottom - 50, WS_VISIBLE);
  EXPECT_EQ(lowerRight.right, work.right);
  EXPECT_EQ(lowerRight.bottom, work.bottom);
  for (const RECT& frame : {frameOver(0, 0, 0), frameOver(0, 0, WS_VISIBLE | WS_MINIMIZE)}) {
    EXPECT_EQ(frame.left, (work.left + work.right - (frame.right - frame.left)) / 2);
    EXPECT_EQ(frame.top, (work.top + work.bottom - (frame.bottom - frame.top)) / 2);
  }
}

}  // namespace
