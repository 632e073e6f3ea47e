// SPDX-License-Identifier: MIT
// The row above the items that leads to the folder above.
#include <gmock/gmock.h>

#include "tests/hosts/qxbrowse/MainWindowTest.h"

namespace {

using namespace browse;
using main_window_test::TheMainWindow;
using testing::ElementsAre;
using testing::IsEmpty;

class TheWayUp : public TheMainWindow {
 protected:
  void SetUp() override {
    TheMainWindow::SetUp();
    showBoth();
  }
  std::wstring nameInRow(Side side, int row) { return cell(side, row - 1, Column::name); }
  void setState(Side side, int row, UINT state) {
    LVITEMW item{};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = state;
    SendMessageW(window.pane(side).list(), LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                 reinterpret_cast<LPARAM>(&item));
  }
  // As a click does it.
  void chooseRow(Side side, int row) {
    window.pane(side).focusList();
    setState(side, -1, 0);
    setState(side, row, LVIS_SELECTED | LVIS_FOCUSED);
  }
  LRESULT notify(Side side, UINT code) {
    NMLVDISPINFOW what{};
    what.hdr = {window.pane(side).list(), 0, code};
    return SendMessageW(window.handle(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&what));
  }
};

TEST_F(TheWayUp, StandsAboveAllItemsInEveryOrder) {
  for (const Side side : {Side::local, Side::server}) {
    for (const Column column : {Column::name, Column::size, Column::type, Column::time}) {
      for (const bool isDescending : {false, true}) {
        window.pane(side).setSorting({column, isDescending});
        EXPECT_EQ(nameInRow(side, 0), L"..");
      }
    }
  }
}

TEST_F(TheWayUp, IsNotThereWhereNothingIsAbove) {
  window.go(Side::local, L"");
  window.showFolder(Side::local, L"", ItemList({{L"C:\\", true}}));
  EXPECT_EQ(nameInRow(Side::local, 0), L"C:\\");
  window.go(Side::server, L"/");
  window.showFolder(Side::server, L"/", ItemList({{L"pub", true}}));
  EXPECT_EQ(nameInRow(Side::server, 0), L"pub");
  EXPECT_EQ(window.pane(Side::server).selected().front().name, L"pub");
  window.showDisconnected();
  EXPECT_EQ(items(Side::server), -1) << "no row at all";
}

TEST_F(TheWayUp, LeadsToTheFolderAboveByEnterAndByADoubleClick) {
  chooseRow(Side::server, 0);
  EXPECT_TRUE(press(VK_RETURN));
  EXPECT_THAT(notes.take(), ElementsAre(L"list server /"));
  window.showFolder(Side::server, L"/", ItemList({{L"etc", true}, {L"pub", true}}));
  EXPECT_EQ(window.pane(Side::server).selected().front().name, L"pub") << "where the user was";
  chooseRow(Side::local, 0);
  notify(Side::local, NM_DBLCLK);
  EXPECT_THAT(notes.take(), ElementsAre(L"list local C:\\"));
}

TEST_F(TheWayUp, IsNothingThatCouldBeTransferredRenamedOrDeleted) {
  for (const Side side : {Side::local, Side::server}) {
    chooseRow(side, 0);
    EXPECT_EQ(window.situation().selected, 0);
    for (const WORD key : {WORD{VK_F5}, WORD{VK_F2}, WORD{VK_DELETE}, WORD{VK_F6}}) press(key);
    EXPECT_EQ(SendMessageW(window.pane(side).list(), LVM_GETEDITCONTROL, 0, 0), 0);
    EXPECT_EQ(notify(side, LVN_BEGINLABELEDITW), TRUE) << "also by a second click";
  }
  EXPECT_THAT(notes.take(), IsEmpty());
}

TEST_F(TheWayUp, IsNotAmongAllThatIsSelected) {
  chooseRow(Side::local, 0);
  window.execute(Command::selectAll);
  EXPECT_EQ(window.situation().selected, 3);
  EXPECT_EQ(SendMessageW(window.pane(Side::local).list(), LVM_GETITEMSTATE, 0, LVIS_SELECTED), 0);
  setState(Side::local, 0, LVIS_SELECTED);
  EXPECT_EQ(window.situation().selected, 3) << "not when it was selected along with them either";
  press(VK_F5);
  EXPECT_THAT(notes.take(), ElementsAre(L"upload C:\\here\\sub C:\\here\\a.txt C:\\here\\b.txt to /pub"));
}

TEST_F(TheWayUp, TakesADropForTheFolderAbove) {
  choose(Side::local, L"a.txt");
  NMLISTVIEW begin{};
  begin.hdr = {window.pane(Side::local).list(), 0, LVN_BEGINDRAG};
  begin.iItem = 2;
  SendMessageW(window.handle(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&begin));
  RECT row{LVIR_LABEL, 0, 0, 0};
  const HWND list = window.pane(Side::server).list();
  SendMessageW(list, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row));
  POINT at{row.left + 5, (row.top + row.bottom) / 2};
  MapWindowPoints(list, window.handle(), &at, 1);
  SendMessageW(window.handle(), WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
  EXPECT_THAT(notes.take(), ElementsAre(L"upload C:\\here\\a.txt to /"));
}

TEST_F(TheWayUp, IsWhatIsChosenInAnEmptyFolder) {
  window.go(Side::server, L"/pub/x");
  window.showFolder(Side::server, L"/pub/x", {});
  window.pane(Side::server).focusList();
  notes.take();
  EXPECT_TRUE(press(VK_RETURN));
  EXPECT_THAT(notes.take(), ElementsAre(L"list server /pub"));
}

}  // namespace
