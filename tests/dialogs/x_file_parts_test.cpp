// SPDX-License-Identifier: MIT
// CXFileDialog inside a dialog of the test's own, whose controls are the test's choice: what it does without
// the usual ones, and what exactly it sends.
#include "tests/dialogs/XFileDialogTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Control {
  int id;
  const char* className;
  RECT rect;
};

// Stands for the system's dialog.
class OwnDialog : public CWnd {
 public:
  explicit OwnDialog(const std::vector<Control>& controls) {
    CreateEx(0, "STATIC", "", WS_OVERLAPPEDWINDOW, {0, 0, 600, 400}, nullptr, 0);
    for (const Control& each : controls)
      CreateWindowExA(0, each.className, "", WS_CHILD | WS_VISIBLE, each.rect.left, each.rect.top,
                      each.rect.right - each.rect.left, each.rect.bottom - each.rect.top, m_hWnd,
                      reinterpret_cast<HMENU>(static_cast<INT_PTR>(each.id)), GetModuleHandleA(nullptr),
                      nullptr);
  }
  ~OwnDialog() override { DestroyWindow(); }

  // As the system does: a window from the template, whose messages the hook sees.
  [[nodiscard]] HWND showTemplate(const OPENFILENAMEA& record) const {
    return CreateDialogParamA(record.hInstance, record.lpTemplateName, m_hWnd,
                              reinterpret_cast<DLGPROC>(record.lpfnHook), reinterpret_cast<LPARAM>(&record));
  }
  [[nodiscard]] RECT rectOf(int id) const {
    RECT rect{};
    GetWindowRect(GetDlgItem(id), &rect);
    MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
  }

  std::vector<std::string> log;
  std::string path;  // the full name of the file in the dialog

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == CDM_SETCONTROLTEXT)
      log.push_back("text " + std::to_string(wParam) + " " + reinterpret_cast<const char*>(lParam));
    if (message == WM_COMMAND && wParam == IDOK)
      log.push_back(reinterpret_cast<HWND>(lParam) == GetDlgItem(IDOK) ? "OK" : "OK of another button");
    if (message == CDM_GETFILEPATH) {
      std::snprintf(reinterpret_cast<char*>(lParam), wParam, "%s", path.c_str());
      return static_cast<LRESULT>(path.size() + 1);
    }
    return CWnd::WindowProc(message, wParam, lParam);
  }
};

class TestedDialog : public CXFileDialog {
 public:
  using CXFileDialog::CXFileDialog;
  using CXFileDialog::OnNotify;
};

class XFileParts : public XFileDialogTest {
 protected:
  using Look = std::function<void(OwnDialog&, HWND inner, OPENFILENAMEA& record)>;

  // Runs the dialog inside one that has `controls`, as long as `look` takes.
  void runInside(const std::vector<Control>& controls, const Look& look) {
    const FileDialogStandIn standIn([&](OPENFILENAMEA& record) {
      OwnDialog own(controls);
      const HWND inner = own.showTemplate(record);
      EXPECT_NE(inner, nullptr);
      look(own, inner, record);
      return FALSE;
    });
    dialog.DoModal();
  }
  // The type box's left edge after a resize.
  LONG columnWith(const std::vector<Control>& controls, LayoutMode mode) {
    LONG column = 0;
    dialog.m_nLayoutMode = mode;
    runInside(controls, [&column](OwnDialog& own, HWND inner, OPENFILENAMEA&) {
      SendMessageA(inner, WM_SIZE, 0, 0);
      column = own.rectOf(1136).left;
    });
    return column;
  }
  static void pick(HWND inner, int entry) {
    const HWND box = GetDlgItem(inner, 1002);
    SendMessageA(box, CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
    SendMessageA(inner, WM_COMMAND, MAKEWPARAM(1002, CBN_SELENDOK), reinterpret_cast<LPARAM>(box));
  }

  const Control nameBox{1148, "EDIT", {70, 200, 300, 220}};
  const Control nameEdit{1152, "EDIT", {40, 200, 300, 220}};
  const Control typeBox{1136, "EDIT", {20, 230, 300, 250}};
  const Control okButton{IDOK, "BUTTON", {320, 200, 400, 220}};
  TestedDialog dialog{true, nullptr, nullptr, OFN_HIDEREADONLY, nullptr, nullptr};
};

TEST_F(XFileParts, LineUpWithTheNameBox) {
  EXPECT_EQ(columnWith({nameBox, nameEdit, typeBox}, LayoutMode::newLayout), 70);
  EXPECT_EQ(columnWith({nameBox, nameEdit, typeBox}, LayoutMode::oldLayout), 78);
}

TEST_F(XFileParts, LineUpWithTheNamesEditWhereThereIsNoBox) {
  EXPECT_EQ(columnWith({nameEdit, typeBox}, LayoutMode::newLayout), 40);
  EXPECT_EQ(columnWith({nameEdit, typeBox}, LayoutMode::oldLayout), 48);
}

TEST_F(XFileParts, LineUpAtNinetyWithoutEither) {
  EXPECT_EQ(columnWith({typeBox}, LayoutMode::newLayout), 90);
  EXPECT_EQ(columnWith({typeBox}, LayoutMode::oldLayout), 90);
}

TEST_F(XFileParts, TypeThePickedEntryPressOkAndPutTheTextBack) {
  profile.write("Folder0", start);
  profile.write("Folder1", other);
  for (const Control& name : {nameBox, nameEdit}) {
    runInside({name, typeBox, okButton}, [&](OwnDialog& own, HWND inner, OPENFILENAMEA&) {
      SetWindowTextA(own.GetDlgItem(name.id), "typed");
      pick(inner, 1);
      const std::string text = "text " + std::to_string(name.id) + " ";
      EXPECT_THAT(own.log, ElementsAre(text + other, "OK", text + "typed"));
    });
  }
}

TEST_F(XFileParts, TakeNoOtherEventForAPick) {
  profile.write("Folder0", other);
  runInside({nameBox, typeBox}, [](OwnDialog& own, HWND inner, OPENFILENAMEA&) {
    const HWND box = GetDlgItem(inner, 1002);
    SendMessageA(box, CB_SETCURSEL, 0, 0);
    for (const int event : {CBN_SELCHANGE, CBN_DROPDOWN, CBN_CLOSEUP, CBN_SELENDCANCEL, CBN_EDITCHANGE})
      SendMessageA(inner, WM_COMMAND, MAKEWPARAM(1002, event), reinterpret_cast<LPARAM>(box));
    SendMessageA(inner, WM_COMMAND, MAKEWPARAM(1001, CBN_SELENDOK), 0);
    EXPECT_THAT(own.log, IsEmpty());
  });
}

TEST_F(XFileParts, SendNothingForAnEntryThatHasGoneOrNone) {
  profile.write("Folder0", other);
  runInside({nameBox, typeBox}, [this](OwnDialog& own, HWND inner, OPENFILENAMEA&) {
    pick(inner, -1);
    std::filesystem::remove_all(other);
    pick(inner, 0);
    EXPECT_THAT(own.log, IsEmpty());
  });
}

TEST_F(XFileParts, SeeTheSystemsRecordInEveryNotification) {
  runInside({nameBox, typeBox}, [this](OwnDialog&, HWND, OPENFILENAMEA& record) {
    record.nFilterIndex = 9;
    NMHDR header{};
    LRESULT result = 0;
    EXPECT_FALSE(dialog.OnNotify(0, reinterpret_cast<LPARAM>(&header), &result)) << "left to the base class";
    EXPECT_EQ(dialog.m_ofn.nFilterIndex, 9u);
    EXPECT_EQ(dialog.m_ofn.lStructSize, 152u);
    EXPECT_EQ(record.lStructSize, 168u);
  });
}

struct Confirmed {
  const char* path;
  const char* folder;
};

TEST_F(XFileParts, StoreWhatStandsBeforeTheLastBackslash) {
  for (const Confirmed& each : {Confirmed{"C:\\data\\a.txt", "C:\\data"}, Confirmed{"C:\\a.txt", "C:"},
                                Confirmed{"C:/x\\y/a.txt", "C:/x"}, Confirmed{"a.txt", "a.txt"}}) {
    runInside({nameBox, typeBox}, [&](OwnDialog& own, HWND inner, OPENFILENAMEA&) {
      own.path = each.path;
      NMHDR header{};
      header.code = static_cast<UINT>(CDN_FILEOK);
      EXPECT_EQ(SendMessageA(inner, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)), 0);
    });
    EXPECT_EQ(profile.read("Folder0"), each.folder);
    EXPECT_EQ(profile.read("Folder"), each.folder);
  }
}

}  // namespace
