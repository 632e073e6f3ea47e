// SPDX-License-Identifier: MIT
// What is dropped, right-clicked and moved in the main window, and how the keyboard does the same.
#include <gmock/gmock.h>

#include <cstring>

#include "hosts/qxbrowse/ui/MenuPlace.h"
#include "tests/hosts/qxbrowse/MainWindowTest.h"
#include "tests/hosts/qxbrowse/ShownMenu.h"
// Only now:
#include <shlobj.h>

namespace browse {
namespace {

using main_window_test::TheMainWindow;
using testing::ElementsAre;
using testing::IsEmpty;

// What another program gives the window whose point files are dropped at.
HDROP dropOf(const std::vector<std::wstring>& files, POINT at) {
  std::wstring list;
  for (const std::wstring& file : files) list += file + L'\0';
  const std::size_t bytes = (list.size() + 1) * sizeof(wchar_t);
  const HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + bytes);
  auto* const head = static_cast<DROPFILES*>(GlobalLock(memory));
  *head = {sizeof(DROPFILES), at, FALSE, TRUE};
  std::memcpy(head + 1, list.c_str(), bytes);
  GlobalUnlock(memory);
  return static_cast<HDROP>(memory);
}

class TheMouse : public TheMainWindow {
 protected:
  // In the window's coordinates.
  [[nodiscard]] POINT middleOf(HWND control) const {
    RECT area{};
    GetWindowRect(control, &area);
    POINT middle{(area.left + area.right) / 2, (area.top + area.bottom) / 2};
    ScreenToClient(window.handle(), &middle);
    return middle;
  }
  // Of an item, above which the way up has a row.
  [[nodiscard]] POINT middleOfItem(Side side, int item) {
    RECT area{LVIR_LABEL, 0, 0, 0};
    const HWND list = window.pane(side).list();
    SendMessageW(list, LVM_GETITEMRECT, static_cast<WPARAM>(item + 1), reinterpret_cast<LPARAM>(&area));
    MapWindowPoints(list, window.handle(), reinterpret_cast<POINT*>(&area), 2);
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
  }
  void drop(const std::vector<std::wstring>& files, POINT at) {
    SendMessageW(window.handle(), WM_DROPFILES, reinterpret_cast<WPARAM>(dropOf(files, at)), 0);
  }
  void mouse(UINT message, POINT at) {
    SendMessageW(window.handle(), message, MK_LBUTTON, MAKELPARAM(at.x, at.y));
  }
  [[nodiscard]] int widthOf(Side side) { return areaOf(side).right - areaOf(side).left; }
  [[nodiscard]] int heightOf(Side side) { return areaOf(side).bottom - areaOf(side).top; }
  // Between the two lists.
  [[nodiscard]] POINT border() {
    POINT at{(areaOf(Side::local).right + areaOf(Side::server).left) / 2, areaOf(Side::local).top + 10};
    ScreenToClient(window.handle(), &at);
    return at;
  }
  void addBottom() {
    const HWND below = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, 1, 1, window.handle(),
                                       nullptr, GetModuleHandleW(nullptr), nullptr);
    window.setBottomPane({below, nullptr, nullptr});
  }
  [[nodiscard]] std::wstring message() const {
    wchar_t text[256] = L"";
    SendMessageW(look.child(window.handle(), STATUSCLASSNAMEA), SB_GETTEXTW, 1,
                 reinterpret_cast<LPARAM>(text));
    return text;
  }

 private:
  [[nodiscard]] RECT areaOf(Side side) {
    RECT area{};
    GetWindowRect(window.pane(side).list(), &area);
    return area;
  }
};

TEST_F(TheMouse, DropsFilesOfOtherProgramsOnTheServersSide) {
  showBoth();
  drop({L"C:\\one", L"D:\\two \x43A"}, middleOf(window.pane(Side::server).list()));
  EXPECT_THAT(notes.take(), ElementsAre(L"upload C:\\one D:\\two \x43A to /pub"));
}

// They came into the folder that was shown.
TEST_F(TheMouse, DropsFilesIntoTheFolderBelowIt) {
  showBoth();
  drop({L"C:\\one"}, middleOfItem(Side::server, 0));
  EXPECT_THAT(notes.take(), ElementsAre(L"upload C:\\one to /pub/x"));
}

// They were uploaded, wherever in the window they had been dropped.
TEST_F(TheMouse, DropsNothingOfOtherProgramsOnTheLocalSide) {
  showBoth();
  drop({L"C:\\one"}, middleOf(window.pane(Side::local).list()));
  EXPECT_THAT(notes.take(), IsEmpty());
  EXPECT_EQ(message(), text(Text::statusDropElsewhere));
}

// Nothing happened, without a word.
TEST_F(TheMouse, DropsNothingWhereThereIsNoServer) {
  showLocal();
  drop({L"C:\\one"}, middleOf(window.pane(Side::server).list()));
  EXPECT_THAT(notes.take(), IsEmpty());
  EXPECT_EQ(message(), text(Text::statusNotConnected));
}

TEST_F(TheMouse, OffersWhatCanBeDoneWithAnItem) {
  showBoth();
  choose(Side::server, L"y.bin");
  const HWND list = window.pane(Side::server).list();
  POINT at = middleOfItem(Side::server, 1);
  ClientToScreen(window.handle(), &at);
  ShownMenu::open(
      [&] { SendMessageW(list, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list), MAKELPARAM(at.x, at.y)); },
      [](const ShownMenu& menu) {
        EXPECT_TRUE(menu.isEnabled(Command::rename));
        EXPECT_TRUE(menu.isEnabled(Command::copyTo));
        menu.press(L't');
      });
  EXPECT_THAT(notes.take(), ElementsAre(L"download /pub/y.bin to C:\\here"));
}

TEST_F(TheMouse, HasAKeyForItsMenu) {
  showBoth();
  choose(Side::local, L"a.txt");
  choose(Side::server, L"x");
  const HWND list = window.pane(Side::local).list();
  window.pane(Side::local).focusList();
  ShownMenu::open([&] { pressMenuKey(list); },
                  [](const ShownMenu& menu) {
                    EXPECT_FALSE(menu.isEnabled(Command::copyTo)) << "on the server alone";
                    menu.press(L't');
                  });
  EXPECT_THAT(notes.take(), ElementsAre(L"upload C:\\here\\a.txt to /pub"));
}

TEST_F(TheMouse, IsNotNeededToPlaceAMenu) {
  showLocal();
  choose(Side::local, L"b.txt");
  const HWND list = window.pane(Side::local).list();
  const POINT asked = menuPlace(list, {17, 4});
  EXPECT_EQ(asked.x, 17);
  EXPECT_EQ(asked.y, 4);
  const POINT row = middleOfItem(Side::local, 2);
  POINT place = menuPlace(list, {-1, -1});
  ScreenToClient(window.handle(), &place);
  EXPECT_GT(place.y, row.y) << "below the item";
  EXPECT_LT(place.y, row.y + 20);
  EXPECT_LT(place.x, row.x);
  MoveWindow(list, 0, 0, 100, 20, FALSE);  // no row is in view
  POINT corner = menuPlace(list, {-1, -1});
  ScreenToClient(list, &corner);
  EXPECT_EQ(corner.x, 0);
  EXPECT_EQ(corner.y, 0);
}

// What runs ended only when somebody had closed the menu of a window that nobody saw any more.
TEST_F(TheMainWindow, ClosesItsMenuWhenItCloses) {
  showBoth();
  const HWND list = window.pane(Side::server).list();
  ShownMenu::open([&] { pressMenuKey(list); },
                  [this](const ShownMenu&) { PostMessageW(window.handle(), WM_CLOSE, 0, 0); });
  EXPECT_THAT(notes.take(), ElementsAre(L"end"));
}

// A second question came over the first.
TEST_F(TheMainWindow, DoesNotCloseBehindADialog) {
  EnableWindow(window.handle(), FALSE);  // as a dialog over it does
  SendMessageW(window.handle(), WM_CLOSE, 0, 0);
  EXPECT_THAT(notes.take(), IsEmpty());
  EnableWindow(window.handle(), TRUE);
  SendMessageW(window.handle(), WM_CLOSE, 0, 0);
  EXPECT_THAT(notes.take(), ElementsAre(L"end"));
}

TEST_F(TheMouse, MovesTheBorderBetweenTheSides) {
  const int before = widthOf(Side::local);
  POINT at = border();
  mouse(WM_LBUTTONDOWN, at);
  EXPECT_EQ(GetCapture(), window.handle());
  at.x += 100;
  mouse(WM_MOUSEMOVE, at);
  mouse(WM_LBUTTONUP, at);
  EXPECT_NEAR(widthOf(Side::local), before + 100, 8);
  EXPECT_EQ(GetCapture(), nullptr);
  const int moved = widthOf(Side::local);
  at.x += 100;
  mouse(WM_MOUSEMOVE, at);
  EXPECT_EQ(widthOf(Side::local), moved) << "the button is up";
}

TEST_F(TheMouse, LeavesTheBorderWhereItWasWhenItWasTaken) {
  POINT at = border();
  mouse(WM_LBUTTONDOWN, at);
  ReleaseCapture();
  const int before = widthOf(Side::local);
  at.x += 100;
  mouse(WM_MOUSEMOVE, at);
  EXPECT_EQ(widthOf(Side::local), before);
}

class TheBorders : public TheMouse {
 protected:
  TheBorders() = default;
  void SetUp() override {
    TheMouse::SetUp();
    addBottom();
    showBoth();
    choose(Side::local, L"a.txt");
  }
};

// Only the mouse moved them.
TEST_F(TheBorders, FollowTheArrowKeys) {
  const int width = widthOf(Side::local);
  const int height = heightOf(Side::local);
  EXPECT_TRUE(press(VK_F8));
  for (const int key : {VK_RIGHT, VK_RIGHT, VK_UP}) EXPECT_TRUE(press(static_cast<WORD>(key)));
  EXPECT_NEAR(widthOf(Side::local), width + 32, 4);
  EXPECT_NEAR(heightOf(Side::local), height - 16, 4);
  EXPECT_TRUE(press(VK_RETURN));
  EXPECT_FALSE(press(VK_RIGHT)) << "the list's own again";
  EXPECT_NEAR(widthOf(Side::local), width + 32, 4);
  EXPECT_THAT(notes.take(), IsEmpty());
}

TEST_F(TheBorders, GoBackAtEscape) {
  const int width = widthOf(Side::local);
  for (const int key : {VK_F8, VK_LEFT, VK_DOWN, VK_ESCAPE}) EXPECT_TRUE(press(static_cast<WORD>(key)));
  EXPECT_EQ(widthOf(Side::local), width);
  EXPECT_THAT(notes.take(), IsEmpty()) << "nothing was cancelled";
  EXPECT_TRUE(press(VK_ESCAPE));
  EXPECT_THAT(notes.take(), ElementsAre(L"cancel"));
}

TEST_F(TheBorders, StayAtAnotherKeyWhichIsWhatItAlwaysIs) {
  press(VK_F8);
  press(VK_LEFT);
  const int width = widthOf(Side::local);
  EXPECT_TRUE(press(VK_F5));
  EXPECT_THAT(notes.take(), ElementsAre(L"upload C:\\here\\a.txt to /pub"));
  EXPECT_EQ(widthOf(Side::local), width);
  EXPECT_FALSE(press(VK_LEFT));
}

TEST_F(TheBorders, TurnAtOnceAtTheirEnds) {
  press(VK_F8);
  for (int step = 0; step < 100; ++step) press(VK_LEFT);
  const int narrowest = widthOf(Side::local);
  EXPECT_GT(narrowest, 100);
  press(VK_RIGHT);
  EXPECT_GT(widthOf(Side::local), narrowest);
}

}  // namespace
}  // namespace browse
