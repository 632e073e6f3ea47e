// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/window/MainWindow.h"

#include <gmock/gmock.h>

#include "tests/hosts/qxbrowse/MainWindowTest.h"

namespace {

using namespace browse;
using main_window_test::manyItems;
using main_window_test::Notes;
using main_window_test::TheMainWindow;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(TheMainWindow, ShowsNamesSizesAndTimes) {
  showBoth();
  EXPECT_EQ(items(Side::local), 3);
  EXPECT_EQ(cell(Side::local, 0, Column::name), L"sub");
  EXPECT_EQ(cell(Side::local, 0, Column::size), L"");
  EXPECT_EQ(cell(Side::local, 1, Column::name), L"a.txt");
  EXPECT_EQ(cell(Side::server, 1, Column::size), L"4.88 KB");
  EXPECT_NE(cell(Side::server, 1, Column::type), L"");
  EXPECT_EQ(windowText(window.pane(Side::server).address()), L"/pub");
  EXPECT_EQ(windowText(window.handle()), L"site - qxbrowse");
}

TEST_F(TheMainWindow, ShowsAnIconForEachKind) {
  showBoth();
  for (const Side side : {Side::local, Side::server}) {
    EXPECT_NE(SendMessageW(window.pane(side).list(), LVM_GETIMAGELIST, LVSIL_SMALL, 0), 0);
    EXPECT_GE(icon(side, 0), 0);
    EXPECT_GE(icon(side, 1), 0);
    EXPECT_NE(icon(side, 0), icon(side, 1)) << "a folder and a file";
  }
}

TEST_F(TheMainWindow, CountsWhatIsSelected) {
  showLocal();
  const HWND status = look.child(window.handle(), STATUSCLASSNAMEA);
  const auto shown = [&] {
    wchar_t text[256] = L"";
    SendMessageW(status, SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(text));
    return std::wstring(text);
  };
  EXPECT_EQ(shown(), L"1 of 3 items selected");
  window.pane(Side::local).selectAll();
  EXPECT_EQ(shown(), L"3 of 3 items selected");
}

TEST_F(TheMainWindow, KeepsTheOrderOfTheUserInEveryFolder) {
  window.pane(Side::local).setSorting({Column::size, true});
  showLocal();
  EXPECT_EQ(cell(Side::local, 1, Column::name), L"b.txt");
}

TEST_F(TheMainWindow, ForgetsTheAnswerToAnEarlierQuestion) {
  window.go(Side::local, L"C:\\slow");
  window.go(Side::local, L"C:\\fast");
  window.showFolder(Side::local, L"C:\\fast", ItemList({{L"a"}}));
  window.showFolder(Side::local, L"C:\\slow", {});
  EXPECT_EQ(window.pane(Side::local).path(), L"C:\\fast");
  EXPECT_EQ(items(Side::local), 1);
}

TEST_F(TheMainWindow, StaysInItsFolderWhereAnotherCannotBeRead) {
  showLocal();
  window.go(Side::local, L"C:\\locked");
  window.showFolderFailed(Side::local, L"C:\\locked", L"no entry");
  EXPECT_EQ(items(Side::local), 3);
  EXPECT_EQ(windowText(window.pane(Side::local).address()), L"C:\\here");
}

TEST_F(TheMainWindow, SortsByAClickOnAColumnAndBackByASecond) {
  showLocal();
  const HWND list = window.pane(Side::local).list();
  NMLISTVIEW click{};
  click.hdr = {list, 0, LVN_COLUMNCLICK};
  click.iSubItem = static_cast<int>(Column::size);
  choose(Side::local, L"a.txt");
  SendMessageW(window.handle(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&click));
  EXPECT_EQ(cell(Side::local, 1, Column::name), L"a.txt");
  SendMessageW(window.handle(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&click));
  EXPECT_EQ(cell(Side::local, 1, Column::name), L"b.txt");
  ASSERT_EQ(window.pane(Side::local).selected().size(), 1U);
  EXPECT_EQ(window.pane(Side::local).selected().front().name, L"a.txt") << "the selection moves along";
  const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
  HDITEMW item{};
  item.mask = HDI_FORMAT;
  SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(Column::size), reinterpret_cast<LPARAM>(&item));
  EXPECT_NE(item.fmt & HDF_SORTDOWN, 0);
}

// The list asks for what begins with a typed letter by a flag of its own, which was taken for none.
TEST_F(TheMainWindow, FindsWhatIsTyped) {
  showLocal();
  constexpr LPARAM kFromAKey = 1;
  SendMessageW(window.pane(Side::local).list(), WM_CHAR, L'b', kFromAKey);
  ASSERT_EQ(window.pane(Side::local).selected().size(), 1U);
  EXPECT_EQ(window.pane(Side::local).selected().front().name, L"b.txt");
}

// Each transfer that ended had the lists read again, and the user was at their beginning.
TEST_F(TheMainWindow, KeepsWhatIsSelectedWhenAFolderIsListedAgain) {
  showLocal();
  choose(Side::local, L"b.txt");
  window.refresh(Side::local, L"C:\\here");
  window.showFolder(Side::local, L"C:\\here", ItemList({{L"a.txt"}, {L"aa.txt"}, {L"b.txt"}}));
  ASSERT_EQ(window.pane(Side::local).selected().size(), 1U);
  EXPECT_EQ(window.pane(Side::local).selected().front().name, L"b.txt");
}

TEST_F(TheMainWindow, HoldsAHundredThousandItems) {
  window.go(Side::local, L"C:\\large");
  window.showFolder(Side::local, L"C:\\large", ItemList(manyItems(100'000)));
  EXPECT_EQ(items(Side::local), 100'000);
  EXPECT_EQ(cell(Side::local, 99'999, Column::name), L"file99999");
  window.pane(Side::local).selectAll();
  EXPECT_EQ(window.situation().selected, 100'000);
  window.pane(Side::local).setSorting({Column::size, true});
  EXPECT_EQ(cell(Side::local, 0, Column::name), L"file99999");
  EXPECT_EQ(window.situation().selected, 100'000);
}

TEST_F(TheMainWindow, OpensFoldersAndGoesBackToTheOneThatItLeft) {
  showBoth();
  choose(Side::server, L"x");
  EXPECT_TRUE(press(VK_RETURN));
  EXPECT_THAT(notes.take(), ElementsAre(L"list server /pub/x"));
  window.showFolder(Side::server, L"/pub/x", {});
  EXPECT_TRUE(press(VK_BACK));
  EXPECT_THAT(notes.take(), ElementsAre(L"list server /pub"));
  window.showFolder(Side::server, L"/pub", ItemList({{L"w", true}, {L"x", true}}));
  EXPECT_EQ(window.pane(Side::server).selected().front().name, L"x");
}

TEST_F(TheMainWindow, TransfersToTheOtherSide) {
  showBoth();
  choose(Side::local, L"a.txt");
  EXPECT_TRUE(press(VK_F5));
  EXPECT_THAT(notes.take(), ElementsAre(L"upload C:\\here\\a.txt to /pub"));
  choose(Side::server, L"y.bin");
  EXPECT_TRUE(press(VK_F5));
  EXPECT_THAT(notes.take(), ElementsAre(L"download /pub/y.bin to C:\\here"));
}

TEST_F(TheMainWindow, DoesNothingThatIsNotPossible) {
  showLocal();
  choose(Side::local, L"a.txt");
  EXPECT_TRUE(press(VK_F5));
  window.execute(Command::disconnect);
  window.execute(Command::uploadFiles);
  EXPECT_THAT(notes.take(), IsEmpty());
}

TEST_F(TheMainWindow, GoesFromSideToSideByTab) {
  showBoth();
  choose(Side::local, L"a.txt");
  EXPECT_TRUE(press(VK_TAB));
  EXPECT_EQ(GetFocus(), window.pane(Side::server).list());
  EXPECT_TRUE(press(VK_TAB));
  EXPECT_EQ(GetFocus(), window.pane(Side::local).list());
}

TEST_F(TheMainWindow, GoesToTheBottomByTabAsWell) {
  showBoth();
  bool hasFocus = false;
  const HWND below = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, 1, 1, window.handle(),
                                     nullptr, GetModuleHandleW(nullptr), nullptr);
  window.setBottomPane({below, nullptr, [&hasFocus] { hasFocus = true; }});
  RECT area{};
  GetWindowRect(below, &area);
  EXPECT_GT(area.bottom - area.top, 50) << "it has room";
  choose(Side::server, L"x");
  EXPECT_TRUE(press(VK_TAB));
  EXPECT_TRUE(hasFocus);
}

TEST_F(TheMainWindow, GoesWhereTheAddressSays) {
  showLocal();
  window.pane(Side::local).focusList();
  window.execute(Command::address);
  const HWND address = window.pane(Side::local).address();
  EXPECT_EQ(GetFocus(), address);
  EXPECT_FALSE(press(VK_BACK)) << "the text's own";
  SetWindowTextW(address, L"C:\\there");
  SendMessageW(address, WM_KEYDOWN, VK_RETURN, 0);
  EXPECT_THAT(notes.take(), ElementsAre(L"list local C:\\there"));
  EXPECT_EQ(GetFocus(), window.pane(Side::local).list());
}

TEST_F(TheMainWindow, ForgetsATypedAddressAtEscape) {
  showLocal();
  const HWND address = window.pane(Side::local).address();
  window.execute(Command::address);
  SetWindowTextW(address, L"C:\\there");
  SendMessageW(address, WM_KEYDOWN, VK_ESCAPE, 0);
  EXPECT_EQ(windowText(address), L"C:\\here");
  EXPECT_THAT(notes.take(), IsEmpty());
}

TEST_F(TheMainWindow, RenamesInPlace) {
  showBoth();
  choose(Side::server, L"y.bin");
  EXPECT_TRUE(press(VK_F2));
  const auto edit =
      reinterpret_cast<HWND>(SendMessageW(window.pane(Side::server).list(), LVM_GETEDITCONTROL, 0, 0));
  ASSERT_NE(edit, nullptr);
  EXPECT_FALSE(press(VK_RETURN)) << "the edit's own";
  SetWindowTextW(edit, L"z.bin");
  SendMessageW(edit, WM_KEYDOWN, VK_RETURN, 0);
  EXPECT_THAT(notes.take(), ElementsAre(L"rename server /pub/y.bin to /pub/z.bin"));
  EXPECT_EQ(cell(Side::server, 1, Column::name), L"y.bin") << "until the server has been asked again";
}

TEST_F(TheMainWindow, RefusesANameWithASeparator) {
  showBoth();
  choose(Side::server, L"y.bin");
  press(VK_F2);
  const auto edit =
      reinterpret_cast<HWND>(SendMessageW(window.pane(Side::server).list(), LVM_GETEDITCONTROL, 0, 0));
  SetWindowTextW(edit, L"../z");
  SendMessageW(edit, WM_KEYDOWN, VK_RETURN, 0);
  EXPECT_THAT(notes.take(), IsEmpty());
}

TEST_F(TheMainWindow, AsksBeforeItDeletes) {
  showBoth();
  choose(Side::server, L"y.bin");
  for (const int answer : {IDNO, IDYES}) {
    dialog_test::drive([this] { return press(VK_DELETE); },
                       [this, answer](dialog_test::Driver& user) {
                         const HWND box = user.waitForBox(window.handle());
                         user.press(box, answer);
                         user.waitUntilGone(box);
                       });
    const std::vector<std::wstring> done = notes.take();
    EXPECT_EQ(done.size(), answer == IDYES ? 1U : 0U);
    EXPECT_THAT(done, testing::Each(L"remove server /pub/y.bin"));
  }
}

TEST_F(TheMainWindow, AsksForTheNameOfANewFolder) {
  showBoth();
  window.pane(Side::local).focusList();
  dialog_test::drive([this] { return press(VK_F7); },
                     [](dialog_test::Driver& user) {
                       const HWND dialog = user.waitForDialog();
                       EXPECT_FALSE(IsWindowEnabled(user.control(dialog, IDOK)));
                       user.type(user.control(dialog, 100), "new");
                       EXPECT_TRUE(IsWindowEnabled(user.control(dialog, IDOK)));
                       user.press(dialog, IDOK);
                       user.waitUntilGone(dialog);
                     });
  EXPECT_THAT(notes.take(), ElementsAre(L"create local C:\\here\\new"));
}

TEST_F(TheMainWindow, MovesOnTheServer) {
  showBoth();
  choose(Side::server, L"y.bin");
  dialog_test::drive([this] { return press(VK_F6); },
                     [](dialog_test::Driver& user) {
                       const HWND dialog = user.waitForDialog();
                       EXPECT_EQ(user.textOf(user.control(dialog, 100)), "/pub/y.bin");
                       user.type(user.control(dialog, 100), "/pub/x/y.bin");
                       user.press(dialog, IDOK);
                       user.waitUntilGone(dialog);
                     });
  EXPECT_THAT(notes.take(), ElementsAre(L"move /pub/y.bin to /pub/x/y.bin"));
}

TEST_F(TheMainWindow, DragsToTheOtherSide) {
  showBoth();
  choose(Side::local, L"a.txt");
  NMLISTVIEW begin{};
  begin.hdr = {window.pane(Side::local).list(), 0, LVN_BEGINDRAG};
  begin.iItem = 2;
  SendMessageW(window.handle(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&begin));
  EXPECT_EQ(GetCapture(), window.handle());
  EXPECT_TRUE(press(VK_ESCAPE));
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_THAT(notes.take(), IsEmpty()) << "Escape ends the drag, and nothing else";

  SendMessageW(window.handle(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&begin));
  RECT target{};
  GetWindowRect(window.pane(Side::server).list(), &target);
  POINT at{(target.left + target.right) / 2, target.bottom - 20};
  ScreenToClient(window.handle(), &at);
  SendMessageW(window.handle(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(at.x, at.y));
  SendMessageW(window.handle(), WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
  EXPECT_THAT(notes.take(), ElementsAre(L"upload C:\\here\\a.txt to /pub"));
}

TEST_F(TheMainWindow, GrowsWithTheDotsPerInchOfItsScreen) {
  const HWND list = window.pane(Side::local).list();
  const LRESULT plain = SendMessageW(list, LVM_GETCOLUMNWIDTH, 0, 0);
  RECT area{};
  GetWindowRect(window.handle(), &area);
  RECT suggested = area;
  suggested.right -= 200;
  SendMessageW(window.handle(), WM_DPICHANGED, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(&suggested));
  GetWindowRect(window.handle(), &area);
  EXPECT_EQ(area.right, suggested.right);
  EXPECT_EQ(SendMessageW(list, LVM_GETCOLUMNWIDTH, 0, 0), plain * 144 / 96);
}

TEST_F(TheMainWindow, TellsAndTakesWhatTheUserHasMadeOfTheColumns) {
  const Side side = Side::server;
  const HWND list = window.pane(side).list();
  const RECT area{0, 0, 900, 600};
  SendMessageW(window.handle(), WM_DPICHANGED, MAKEWPARAM(192, 192), reinterpret_cast<LPARAM>(&area));
  SendMessageW(list, LVM_SETCOLUMNWIDTH, 1, 300);
  window.pane(side).setSorting({Column::size, true});
  Placement placement = window.placement();
  EXPECT_EQ(placement.panes[1].widths[1], 150) << "at 96 dots per inch";
  EXPECT_EQ(placement.panes[1].sorting, (Sorting{Column::size, true}));
  placement.panes[1].widths = {0, 60, 70, 80};
  placement.panes[1].sorting = {Column::time, false};
  window.setPlacement(placement);
  EXPECT_EQ(SendMessageW(list, LVM_GETCOLUMNWIDTH, 1, 0), 120);
  EXPECT_EQ(SendMessageW(list, LVM_GETCOLUMNWIDTH, 0, 0), 400) << "as usual";
  EXPECT_EQ(window.pane(side).items().sorting(), (Sorting{Column::time, false}));
}

TEST_F(TheMainWindow, EndsItsServicesWhenItCloses) {
  SendMessageW(window.handle(), WM_CLOSE, 0, 0);
  SendMessageW(window.handle(), WM_CLOSE, 0, 0);
  window.execute(Command::connect);
  EXPECT_THAT(notes.take(), ElementsAre(L"end")) << "once, and nothing more";
  EXPECT_FALSE(IsWindowVisible(window.handle()));
  window.close();
  EXPECT_EQ(window.handle(), nullptr);
}

TEST_F(TheMainWindow, StaysWhereItMayNotClose) {
  window.setMayClose([] { return false; });
  SendMessageW(window.handle(), WM_CLOSE, 0, 0);
  EXPECT_NE(window.handle(), nullptr);
  EXPECT_THAT(notes.take(), IsEmpty());
}

TEST(TheMainWindows, GiveBackAllThatTheyTook) {
  const auto counts = [] {
    const HANDLE process = GetCurrentProcess();
    return std::pair(GetGuiResources(process, GR_GDIOBJECTS), GetGuiResources(process, GR_USEROBJECTS));
  };
  const auto openAndClose = [] {
    Notes notes;
    MainWindow window(notes);
    window.create();
    window.show(SW_SHOWNOACTIVATE);
    window.go(Side::local, L"C:\\");
    window.showFolder(Side::local, L"C:\\", ItemList(manyItems(10)));
    SendMessageW(window.handle(), WM_CLOSE, 0, 0);
    window.close();
    main_window_test::forgetTheEnd();
  };
  openAndClose();
  const auto before = counts();
  for (int i = 0; i < 3; ++i) openAndClose();
  EXPECT_EQ(counts(), before);
}

}  // namespace
