// SPDX-License-Identifier: MIT
// What CXFileDialog calls the system's dialog with, and what it does around the call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "dialogs/XFileDialog.h"
#include "framework/ui/ThreadState.h"
#include "tests/dialogs/FileDialogStandIn.h"

namespace {

using testing::Each;

class XFileRecord : public testing::Test {
 protected:
  static constexpr DWORD kFlags = OFN_ENABLESIZING | OFN_FILEMUSTEXIST;

  // Runs the dialog as far as the system's call, which sees what `call` sees and answers `answer`.
  int run(CXFileDialog& shown, BOOL answer, std::function<void(OPENFILENAMEA&)> call = nullptr) {
    const FileDialogStandIn standIn([&](OPENFILENAMEA& given) {
      size = given.lStructSize;
      bytes.resize(sizeof(ExtendedFileRecord));
      std::memcpy(bytes.data(), &given, bytes.size());
      if (call) call(given);
      return answer;
    });
    const int result = shown.DoModal();
    called = standIn.called();
    return result;
  }
  [[nodiscard]] OPENFILENAMEA given() const {
    OPENFILENAMEA record;
    std::memcpy(&record, bytes.data(), sizeof record);
    return record;
  }

  CXFileDialog dialog{true, "txt", "first.txt", kFlags, "Texts|*.txt||", nullptr};
  DWORD size = 0;
  std::vector<unsigned char> bytes;
  std::string called;
};

TEST_F(XFileRecord, HasTheExtendedSizeInTheNewLayout) {
  EXPECT_EQ(dialog.m_nLayoutMode, LayoutMode::bySystem);
  run(dialog, FALSE);
  EXPECT_EQ(size, 168u) << "every system served has the new layout";
  dialog.m_nLayoutMode = LayoutMode::newLayout;
  run(dialog, FALSE);
  EXPECT_EQ(size, 168u);
}

TEST_F(XFileRecord, HasThePlainSizeInTheOldLayout) {
  dialog.m_nLayoutMode = LayoutMode::oldLayout;
  run(dialog, FALSE);
  EXPECT_EQ(size, 152u);
}

TEST_F(XFileRecord, IsTheFrameworksRecordFollowedByZeros) {
  run(dialog, FALSE);
  const OPENFILENAMEA record = given();
  EXPECT_STREQ(record.lpTemplateName, "IDD_XFILEDIALOG");
  EXPECT_EQ(record.hInstance, GetModuleHandleA(nullptr));
  EXPECT_EQ(record.Flags, kFlags | OFN_ENABLETEMPLATE | OFN_ENABLEHOOK | OFN_EXPLORER);
  EXPECT_STREQ(record.lpstrFile, "first.txt");
  EXPECT_STREQ(record.lpstrDefExt, "txt");
  EXPECT_STREQ(record.lpstrFilter, "Texts");
  EXPECT_EQ(record.lpfnHook, dialog.m_ofn.lpfnHook);
  EXPECT_THAT(std::vector(bytes.begin() + 152, bytes.end()), Each(0));
}

TEST_F(XFileRecord, GoesToTheCallOfItsMode) {
  run(dialog, FALSE);
  EXPECT_EQ(called, "open");
  CXFileDialog save(false, nullptr, nullptr, kFlags, nullptr, nullptr);
  run(save, FALSE);
  EXPECT_EQ(called, "save");
}

TEST_F(XFileRecord, HasNothingBehindTheInitialName) {
  std::memset(dialog.m_ofn.lpstrFile + 10, 'x', dialog.m_ofn.nMaxFile - 10);
  std::string name;
  run(dialog, FALSE, [&](OPENFILENAMEA& record) { name.assign(record.lpstrFile, record.nMaxFile); });
  EXPECT_EQ(name, "first.txt" + std::string(dialog.m_ofn.nMaxFile - 9, '\0'));
}

TEST_F(XFileRecord, IsBackInTheFrameworksAfterwards) {
  run(dialog, TRUE, [](OPENFILENAMEA& record) {
    record.nFilterIndex = 7;
    record.nFileOffset = 3;
    std::memcpy(record.lpstrFile, "C:\\a.txt", 9);
  });
  EXPECT_EQ(dialog.m_ofn.lStructSize, 152u);
  EXPECT_EQ(dialog.m_ofn.nFilterIndex, 7u);
  EXPECT_EQ(dialog.m_ofn.nFileOffset, 3u);
  EXPECT_EQ(dialog.GetPathName(), "C:\\a.txt");
}

TEST_F(XFileRecord, TheResultIsTheCallsOrCancel) {
  EXPECT_EQ(run(dialog, FALSE), 2);
  EXPECT_EQ(run(dialog, 1), 1);
  EXPECT_EQ(run(dialog, 5), 5);
}

TEST_F(XFileRecord, WaitsForItsWindowInTheSlotOfExplorerDialogs) {
  run(dialog, FALSE, [this](OPENFILENAMEA&) {
    EXPECT_EQ(AfxGetThreadState()->m_pAlternateWndInit, &dialog);
    EXPECT_EQ(AfxGetThreadState()->m_pWndInit, nullptr);
  });
  EXPECT_EQ(AfxGetThreadState()->m_pAlternateWndInit, nullptr);
}

TEST_F(XFileRecord, WaitsForItsWindowInTheCreationHookOtherwise) {
  dialog.m_ofn.Flags &= ~DWORD{OFN_EXPLORER};
  run(dialog, FALSE, [this](OPENFILENAMEA&) {
    EXPECT_EQ(AfxGetThreadState()->m_pAlternateWndInit, nullptr);
    EXPECT_EQ(AfxGetThreadState()->m_pWndInit, &dialog);
  });
  EXPECT_EQ(AfxGetThreadState()->m_pWndInit, nullptr);
  EXPECT_EQ(AfxGetThreadState()->m_hHookCbt, nullptr);
}

class XFileOwner : public XFileRecord {
 protected:
  XFileOwner() {
    EXPECT_TRUE(
        window.CreateEx(0, "STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, {0, 0, 200, 100}, nullptr, 0));
    EXPECT_TRUE(
        other.CreateEx(0, "STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, {0, 0, 200, 100}, nullptr, 0));
    EXPECT_TRUE(child.CreateEx(0, "EDIT", "", WS_CHILD | WS_VISIBLE, {0, 0, 50, 20}, window.m_hWnd, 5));
  }
  ~XFileOwner() override {
    window.DestroyWindow();
    other.DestroyWindow();
  }

  CWnd window;
  CWnd other;
  CWnd child;
};

TEST_F(XFileOwner, IsTheWindowOfTheParentAndDisabledMeanwhile) {
  CXFileDialog shown(true, nullptr, nullptr, kFlags, nullptr, child.m_hWnd);
  run(shown, FALSE, [this](OPENFILENAMEA& record) {
    EXPECT_EQ(record.hwndOwner, window.m_hWnd);
    EXPECT_FALSE(IsWindowEnabled(window.m_hWnd));
  });
  EXPECT_TRUE(IsWindowEnabled(window.m_hWnd));
  EXPECT_EQ(shown.m_ofn.hwndOwner, window.m_hWnd);
}

TEST_F(XFileOwner, StaysDisabledWhenItWasSoBefore) {
  EnableWindow(window.m_hWnd, FALSE);
  CXFileDialog shown(true, nullptr, nullptr, kFlags, nullptr, window.m_hWnd);
  run(shown, FALSE);
  EXPECT_FALSE(IsWindowEnabled(window.m_hWnd));
}

TEST_F(XFileOwner, GetsTheFocusBack) {
  SetFocus(child.m_hWnd);
  ASSERT_EQ(GetFocus(), child.m_hWnd);
  CXFileDialog shown(true, nullptr, nullptr, kFlags, nullptr, window.m_hWnd);
  run(shown, FALSE, [this](OPENFILENAMEA&) { SetFocus(other.m_hWnd); });
  EXPECT_EQ(GetFocus(), child.m_hWnd);
}

// A window above the owner that takes its being disabled for a reason to move the focus.
class MovesTheFocus : public CWnd {
 public:
  explicit MovesTheFocus(HWND target) : m_target(target) {
    CreateEx(0, "STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, {0, 0, 200, 100}, nullptr, 0);
  }
  ~MovesTheFocus() override { DestroyWindow(); }

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == WM_ENABLE && wParam == FALSE) SetFocus(m_target);
    return CWnd::WindowProc(message, wParam, lParam);
  }

 private:
  const HWND m_target;
};

// It was looked for only when the windows above the owner had been disabled.
TEST_F(XFileOwner, GetsTheFocusBackThatWentWhenTheWindowAboveWasDisabled) {
  const MovesTheFocus top(other.m_hWnd);
  CWnd owner;
  ASSERT_TRUE(owner.CreateEx(0, "STATIC", "", WS_POPUP | WS_VISIBLE, {0, 0, 90, 90}, top.m_hWnd, 0));
  SetFocus(child.m_hWnd);
  ASSERT_EQ(GetFocus(), child.m_hWnd);
  CXFileDialog shown(true, nullptr, nullptr, kFlags, nullptr, owner.m_hWnd);
  run(shown, FALSE, [this](OPENFILENAMEA&) { EXPECT_EQ(GetFocus(), other.m_hWnd); });
  EXPECT_EQ(GetFocus(), child.m_hWnd);
  owner.DestroyWindow();
}

TEST_F(XFileOwner, LosesTheFocusWithTheWindowThatHadIt) {
  SetFocus(child.m_hWnd);
  CXFileDialog shown(true, nullptr, nullptr, kFlags, nullptr, window.m_hWnd);
  run(shown, FALSE, [this](OPENFILENAMEA&) {
    SetFocus(other.m_hWnd);
    child.DestroyWindow();
  });
  EXPECT_EQ(GetFocus(), other.m_hWnd);
}

}  // namespace
