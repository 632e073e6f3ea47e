// SPDX-License-Identifier: MIT
// The pane below the two sides, in a window that nobody sees.
#include "hosts/qxbrowse/pane/WorkPane.h"

#include <gmock/gmock.h>

#include <chrono>

#include "hosts/qxbrowse/jobs/ProtocolLog.h"
#include "hosts/qxbrowse/ui/WindowText.h"
#include "tests/hosts/qxbrowse/ShownMenu.h"

namespace {

using namespace browse;
using testing::ElementsAre;
using testing::HasSubstr;

TransferRow rowOf(TransferState state, std::optional<std::uint64_t> size = 1000) {
  TransferRow row;
  row.transfer = {Direction::download, {"/pub/a%b.txt", size, {}}, "C:\\x\\a%b.txt", {}, {}, size};
  row.state = state;
  return row;
}

TEST(AQueueCell, TellsWhatAndHowFar) {
  TransferRow row = rowOf(TransferState::running);
  row.progress = {250, 2048, std::chrono::seconds(125)};
  EXPECT_EQ(queueCell(row, QueueColumn::name), L"a%b.txt");
  EXPECT_EQ(queueCell(row, QueueColumn::direction), L"Download");
  EXPECT_EQ(queueCell(row, QueueColumn::size), L"1000 bytes");
  EXPECT_EQ(queueCell(row, QueueColumn::progress), L"25 %");
  EXPECT_EQ(queueCell(row, QueueColumn::rate), L"2.00 KB/s");
  EXPECT_EQ(queueCell(row, QueueColumn::left), L"2:05");
  EXPECT_EQ(queueCell(row, QueueColumn::state), L"Running");
}

TEST(AQueueCell, TellsOfAnUploadByItsLocalName) {
  TransferRow row = rowOf(TransferState::waiting);
  row.transfer = {Direction::upload, {"/pub/there", {}, {}}, "C:\\x\\here", {}, {}, {}};
  EXPECT_EQ(queueCell(row, QueueColumn::name), L"here");
  EXPECT_EQ(queueCell(row, QueueColumn::progress), L"");
}

TEST(AQueueCell, TellsWhyAndWhatIsLeft) {
  TransferRow row = rowOf(TransferState::failed);
  row.text = "550 No; nothing is left here";
  EXPECT_EQ(queueCell(row, QueueColumn::state), L"Failed: 550 No; nothing is left here");
  row.state = TransferState::cancelled;
  EXPECT_EQ(queueCell(row, QueueColumn::state), L"550 No; nothing is left here");
  row.text.clear();
  EXPECT_EQ(queueCell(row, QueueColumn::state), L"Cancelled");
}

TEST(AQueueCell, NeverShowsMoreThanAll) {
  TransferRow row = rowOf(TransferState::running);
  row.progress.moved = 5000;
  EXPECT_EQ(percentOf(row), 100);
  EXPECT_EQ(percentOf(rowOf(TransferState::running)), std::nullopt);
  EXPECT_EQ(percentOf(rowOf(TransferState::done)), 100);
  row = rowOf(TransferState::running, 0);
  row.progress.moved = 5000;
  EXPECT_EQ(percentOf(row), std::nullopt) << "a size of 0 is none to divide by";
}

class TheWorkPane : public testing::Test {
 protected:
  TheWorkPane() {
    bottom =
        pane.create(frame, queue, [this](const std::vector<Transfer>& transfers) { queue.retry(transfers); });
    MoveWindow(bottom.window, 0, 0, 800, 200, TRUE);
    bottom.setFont(static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)), 96);
    ShowWindow(frame, SW_SHOWNOACTIVATE);
  }
  ~TheWorkPane() override {
    DestroyWindow(frame);
    pump();
  }

  static void pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
  }
  // Past the quit messages of windows that other tests have closed.
  static void pumpUntil(const std::function<bool()>& holds) {
    MSG message;
    while (!holds()) {
      GetMessageW(&message, nullptr, 0, 0);
      DispatchMessageW(&message);
    }
  }

  void add(std::size_t count) {
    queue.add(std::vector<Transfer>(count, {Direction::download, {"/x", 5, {}}, "C:\\x", {}, {}, 5}));
  }
  [[nodiscard]] static LRESULT rows(HWND list) { return SendMessageW(list, LVM_GETITEMCOUNT, 0, 0); }
  [[nodiscard]] static std::wstring cell(HWND list, int row, int column) {
    wchar_t words[256] = L"";
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = words;
    item.cchTextMax = static_cast<int>(std::size(words));
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return words;
  }

  void choose(WPARAM row) const {
    LVITEMW item{};
    item.state = item.stateMask = LVIS_SELECTED;
    SendMessageW(pane.queue().window(), LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
  }
  bool press(WPARAM key) {
    MSG message{};
    message.hwnd = pane.queue().window();
    message.message = WM_KEYDOWN;
    message.wParam = key;
    return pane.takeKey(message);
  }

  const HWND frame = CreateWindowW(L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 900, 300, nullptr, nullptr,
                                   GetModuleHandleW(nullptr), nullptr);
  WorkPane pane;
  TransferQueue queue{
      {}, {.letters = {.post = [](TransferQueue::Letter) {}}, .changed = [this] { pane.queueChanged(); }}};
  BottomPane bottom;
};

TEST_F(TheWorkPane, TellsAndTakesTheWidthsOfTheQueueAt96DotsPerInch) {
  const auto font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
  const QueueWidths usual = pane.queue().widths();
  bottom.setFont(font, 192);
  EXPECT_EQ(pane.queue().widths(), usual);
  QueueWidths wanted = usual;
  wanted.back() = 250;
  wanted.front() = 0;
  pane.setWidths(wanted);
  wanted.front() = usual.front();
  EXPECT_EQ(pane.queue().widths(), wanted);
  EXPECT_EQ(SendMessageW(pane.queue().window(), LVM_GETCOLUMNWIDTH, kQueueColumns - 1, 0), 500);
}

TEST_F(TheWorkPane, ShowsTheQueueWhenItHasChanged) {
  add(3);
  pumpUntil([&] { return rows(pane.queue().window()) == 3; });
  EXPECT_EQ(cell(pane.queue().window(), 0, 0), L"x");
  EXPECT_EQ(cell(pane.queue().window(), 0, static_cast<int>(QueueColumn::state)), L"Waiting");
  queue.cancel(1);
  EXPECT_EQ(cell(pane.queue().window(), 1, static_cast<int>(QueueColumn::state)), L"Cancelled");
}

// Each change had a drawing of its own.
TEST_F(TheWorkPane, DrawsManyChangesOnce) {
  add(1000);
  pumpUntil([&] { return rows(pane.queue().window()) == 1000; });
  UpdateWindow(pane.queue().window());
  static int redrawn;
  redrawn = 0;
  SetWindowSubclass(
      pane.queue().window(),
      [](HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) -> LRESULT {
        if (message == LVM_REDRAWITEMS || message == LVM_SETITEMCOUNT) ++redrawn;
        return DefSubclassProc(list, message, wParam, lParam);
      },
      1, 0);
  for (int change = 0; change < 500; ++change) pane.queueChanged();
  queue.cancel(7);
  queue.cancel(900);
  pumpUntil([] { return redrawn > 0; });
  pump();
  EXPECT_EQ(redrawn, 2) << "one for each row that has changed";
}

TEST_F(TheWorkPane, ClearsTheListWithTheQueue) {
  add(5);
  queue.cancelAll();
  queue.clearDone();
  pumpUntil([&] { return queue.takeChanges().isAll || rows(pane.queue().window()) == 0; });
  EXPECT_EQ(rows(pane.queue().window()), 0);
}

TEST_F(TheWorkPane, CancelsWhatIsSelectedByDel) {
  add(3);
  pumpUntil([&] { return rows(pane.queue().window()) == 3; });
  choose(1);
  EXPECT_TRUE(press(VK_DELETE));
  EXPECT_EQ(queue.list()[1].state, TransferState::cancelled);
  EXPECT_EQ(queue.list().count(TransferState::waiting), 2U);
}

// All that had failed was tried again, or nothing.
TEST_F(TheWorkPane, TriesWhatIsSelectedAgainByEnter) {
  add(3);
  queue.cancelAll();
  pumpUntil([&] { return rows(pane.queue().window()) == 3; });
  choose(1);
  EXPECT_TRUE(press(VK_RETURN));
  EXPECT_EQ(queue.list()[1].state, TransferState::waiting);
  EXPECT_EQ(queue.list().count(TransferState::cancelled), 2U);
}

TEST_F(TheWorkPane, OffersInAMenuWhatCanBeDoneWithWhatIsSelected) {
  constexpr int kRetryEntry = 1;
  constexpr int kCancelEntry = 2;
  add(3);
  queue.cancel(1);
  pumpUntil([&] { return rows(pane.queue().window()) == 3; });
  choose(1);
  const HWND list = pane.queue().window();
  const auto openMenu = [list] { pressMenuKey(list); };
  ShownMenu::open(openMenu, [&](const ShownMenu& menu) {
    EXPECT_TRUE(menu.isEnabled(kRetryEntry));
    EXPECT_FALSE(menu.isEnabled(kCancelEntry)) << "it is cancelled";
    menu.press(L'r');
  });
  EXPECT_EQ(queue.list().count(TransferState::waiting), 3U);
  ShownMenu::open(openMenu, [&](const ShownMenu& menu) {
    EXPECT_FALSE(menu.isEnabled(kRetryEntry));
    menu.press(L'c');
  });
  EXPECT_EQ(queue.list()[1].state, TransferState::cancelled);
}

// Del in the queue asked whether to delete what was selected on the server.
TEST_F(TheWorkPane, KeepsKeysFromTheSides) {
  MSG key{};
  key.message = WM_KEYDOWN;
  key.wParam = VK_DELETE;
  key.hwnd = pane.protocol().window();
  EXPECT_TRUE(pane.takeKey(key));
  key.hwnd = frame;
  EXPECT_FALSE(pane.takeKey(key));
  key.hwnd = pane.protocol().window();
  key.wParam = VK_F5;
  EXPECT_FALSE(pane.takeKey(key));
}

TEST_F(TheWorkPane, ShowsOneListAtATime) {
  EXPECT_TRUE(IsWindowVisible(pane.queue().window()));
  pane.show(WorkPane::Tab::protocol);
  EXPECT_FALSE(IsWindowVisible(pane.queue().window()));
  EXPECT_FALSE(IsWindowVisible(pane.reports().window()));
  EXPECT_TRUE(IsWindowVisible(pane.protocol().window()));
}

TEST_F(TheWorkPane, KeepsTheLastLinesOnly) {
  for (int part = 0; part < 70; ++part) {
    std::vector<std::string> lines;
    for (int line = 0; line < 100; ++line) lines.push_back(std::to_string(part * 100 + line));
    pane.tellProtocol(lines);
  }
  const HWND list = pane.protocol().window();
  EXPECT_EQ(rows(list), static_cast<LRESULT>(LinesPane::kMostLines));
  EXPECT_EQ(cell(list, 0, 0), L"2000");
  EXPECT_EQ(cell(list, static_cast<int>(LinesPane::kMostLines) - 1, 0), L"6999");
}

TEST_F(TheWorkPane, TakesTheProtocolFromAnotherThread) {
  Mailbox mailbox;
  ProtocolLog log(mailbox, [this](std::vector<std::string> lines) { pane.tellProtocol(std::move(lines)); });
  std::thread other([&] {
    for (int line = 0; line < 500; ++line) log.add("> NOOP");
  });
  other.join();
  pump();
  EXPECT_EQ(pane.protocol().size(), 500U);
}

}  // namespace
