// SPDX-License-Identifier: MIT
// What a handler throws while one of the system's file dialogs is up: the dialog ends, everything is as
// before, and the exception comes out of DoModal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

#include "dialogs/DirFileOpen.h"
#include "framework/ui/ThreadState.h"
#include "tests/dialogs/Driver.h"
#include "tests/dialogs/FileDialogStandIn.h"
#include "tests/dialogs/FolderTest.h"
#include "tests/dialogs/ThrowingOwner.h"

namespace {

using dialog_test::drive;
using dialog_test::Driver;
using dialog_test::FolderTest;

// "" when nothing came out.
std::string thrownBy(CFileDialog& dialog, const std::function<void(Driver&)>& user) {
  return drive(
      [&]() -> std::string {
        try {
          EXPECT_EQ(dialog.DoModal(), IDCANCEL);
          return "";
        } catch (const std::runtime_error& error) {
          return error.what();
        }
      },
      user);
}

void cancel(Driver& user) { user.press(user.waitForDialog(), IDCANCEL); }
void noUser(Driver&) {}

struct Kind {
  const char* name;
  std::unique_ptr<CFileDialog> (*make)(HWND owner);
};

class ThrownByTheOwner : public FolderTest, public testing::WithParamInterface<Kind> {
 protected:
  void expectAsBefore() {
    EXPECT_TRUE(IsWindowEnabled(owner.m_hWnd));
    EXPECT_EQ(dialog->m_hWnd, nullptr);
    EXPECT_EQ(AfxGetThreadState()->m_pModalRun, nullptr);
    owner.throwsWhenDisabled = false;
    EXPECT_EQ(thrownBy(*dialog, cancel), "") << "the next one";
  }

  ThrowingOwner owner;
  const std::unique_ptr<CFileDialog> dialog = GetParam().make(owner.m_hWnd);
};

// It was lost by the newer dialog, and came out of the next one.
TEST_P(ThrownByTheOwner, WhileTheDialogIsShownEndsIt) {
  EXPECT_EQ(thrownBy(*dialog,
                     [this](Driver& user) {
                       (void)user.waitForDialog();
                       PostMessageA(owner.m_hWnd, ThrowingOwner::kThrow, 0, 0);
                     }),
            "owner");
  expectAsBefore();
}

TEST_P(ThrownByTheOwner, BeforeTheDialogHasAWindowEndsIt) {
  owner.throwsWhenDisabled = true;
  EXPECT_EQ(thrownBy(*dialog, noUser), "owner");
  expectAsBefore();
}

std::unique_ptr<CFileDialog> makePlain(HWND owner, bool open, bool newer) {
  return std::make_unique<CFileDialog>(open, nullptr, "", 0, "", owner, 0, newer);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ThrownByTheOwner,
    testing::Values(Kind{"Classic", [](HWND owner) { return makePlain(owner, true, false); }},
                    Kind{"Newer", [](HWND owner) { return makePlain(owner, true, true); }},
                    Kind{"NewerSave", [](HWND owner) { return makePlain(owner, false, true); }},
                    Kind{"Picker",
                         [](HWND owner) -> std::unique_ptr<CFileDialog> {
                           return std::make_unique<CDirFileOpen>("Title", "OK", nullptr, true, true, 1, "", 0,
                                                                 "", owner);
                         }}),
    [](const auto& each) { return std::string(each.param.name); });

class Unwilling : public CFileDialog {
 public:
  Unwilling() : CFileDialog(true, nullptr, "", 0, "", nullptr, 0, false) {}

 protected:
  void PreSubclassWindow() override { throw std::runtime_error("taken over"); }
};

using ThrownWhenTakenOver = FolderTest;

// It left the system's hook procedure.
TEST_F(ThrownWhenTakenOver, ByTheDialogsHookLeavesTheWindowToTheSystem) {
  Unwilling dialog;
  std::string text;
  const FileDialogStandIn standIn([&dialog, &text](OPENFILENAMEA& record) {
    const HWND window =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    EXPECT_NO_THROW(record.lpfnHook(window, WM_SETFONT, 0, 0));
    EXPECT_EQ(CWnd::FromHandlePermanent(window), nullptr);
    EXPECT_EQ(dialog.m_hWnd, nullptr);
    DestroyWindow(window);
    return FALSE;
  });
  EXPECT_EQ(thrownBy(dialog, noUser), "taken over");
}

// It left the system's hook for new windows.
TEST_F(ThrownWhenTakenOver, AtItsCreationLeavesTheWindowToTheSystem) {
  Unwilling dialog;
  dialog.m_ofn.Flags &= ~DWORD{OFN_EXPLORER};
  const FileDialogStandIn standIn([&dialog](OPENFILENAMEA&) {
    HWND window = nullptr;
    EXPECT_NO_THROW(
        window = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(CWnd::FromHandlePermanent(window), nullptr);
    EXPECT_EQ(dialog.m_hWnd, nullptr);
    DestroyWindow(window);
    return FALSE;
  });
  EXPECT_EQ(thrownBy(dialog, noUser), "taken over");
}

// Runs `inner` as soon as it is up itself.
class Outer : public CFileDialog {
 public:
  explicit Outer(std::function<void()> inner)
      : CFileDialog(true, nullptr, "", 0, "", nullptr, 0, false), m_inner(std::move(inner)) {}

 protected:
  void OnInitDone() override { m_inner(); }

 private:
  const std::function<void()> m_inner;
};

using ThrownInASecondDialog = FolderTest;

TEST_F(ThrownInASecondDialog, EndsBoth) {
  Outer inner([] { throw std::runtime_error("inner"); });
  Outer outer([&inner] { inner.DoModal(); });
  EXPECT_EQ(thrownBy(outer, noUser), "inner");
}

TEST_F(ThrownInASecondDialog, EndsThatAloneWhereTheFirstOneCatches) {
  Outer inner([] { throw std::runtime_error("inner"); });
  std::atomic<bool> innerOver = false;
  Outer outer([&] {
    EXPECT_THROW(inner.DoModal(), std::runtime_error);
    innerOver = true;
  });
  EXPECT_EQ(thrownBy(outer,
                     [&innerOver](Driver& user) {
                       user.waitUntil("the end of the inner dialog", [&] { return innerOver.load(); });
                       cancel(user);
                     }),
            "");
}

TEST_F(ThrownInASecondDialog, IsNothingOfWhatTheFirstOneHasKept) {
  ThrowingOwner owner;
  CFileDialog inner(true, nullptr, "", 0, "", nullptr, 0, false);
  int innerResult = 0;
  Outer outer([&] {
    SendMessageA(owner.m_hWnd, ThrowingOwner::kThrow, 0, 0);
    EXPECT_NO_THROW(innerResult = inner.DoModal());
  });
  EXPECT_EQ(thrownBy(outer, cancel), "owner");
  EXPECT_EQ(innerResult, IDCANCEL);
}

// The object of a dialog without the explorer's look has the real window, which stands here for the dialog.
class OldStyle : public CFileDialog {
 public:
  OldStyle() : CFileDialog(true, nullptr, "", 0, "", nullptr, 0, false) {
    m_ofn.Flags &= ~DWORD{OFN_EXPLORER};
  }

  bool cancelled = false;

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == ThrowingOwner::kThrow) throw std::runtime_error("old style");
    if (message == WM_COMMAND && wParam == IDCANCEL) cancelled = true;
    return CFileDialog::WindowProc(message, wParam, lParam);
  }
};

using ThrownInAnOldDialog = FolderTest;

TEST_F(ThrownInAnOldDialog, CancelsItsWindow) {
  OldStyle dialog;
  const FileDialogStandIn standIn([&dialog](OPENFILENAMEA&) {
    const HWND window =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    SendMessageA(window, ThrowingOwner::kThrow, 0, 0);
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!dialog.cancelled && std::chrono::steady_clock::now() < limit) {
      MSG message{};
      if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    }
    EXPECT_TRUE(dialog.cancelled);
    DestroyWindow(window);
    return FALSE;
  });
  EXPECT_EQ(thrownBy(dialog, noUser), "old style");
}

}  // namespace
