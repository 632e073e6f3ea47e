// SPDX-License-Identifier: MIT
// What the filter of the directory-or-file dialog costs in a large folder, in messages to the list: it is
// paid once for a folder, and then a dialog that filters works as fast as one that does not.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>

#include "tests/dialogs/DirFileTest.h"
#include "tests/support/Watchdog.h"
// Only now:
#include <commctrl.h>

namespace {

using dialog_test::DirFileTest;
using dialog_test::Driver;
using dialog_test::kNoFilter;

std::atomic<int> g_listMessages = 0;

LRESULT CALLBACK countListMessages(int code, WPARAM wParam, LPARAM lParam) {
  const UINT message = reinterpret_cast<const CWPSTRUCT*>(lParam)->message;
  if (code == HC_ACTION && message >= LVM_FIRST && message < LVM_FIRST + 0x100) ++g_listMessages;
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

// Counts what this thread's list views are sent.
struct ListMessages {
  ListMessages() = default;
  ~ListMessages() { UnhookWindowsHookEx(hook); }
  ListMessages(const ListMessages&) = delete;
  ListMessages& operator=(const ListMessages&) = delete;
  const HHOOK hook = SetWindowsHookExA(WH_CALLWNDPROC, &countListMessages, nullptr, GetCurrentThreadId());
};

// The messages that `work` sends, with the time it takes in the output.
int cost(const char* what, std::uint32_t mode, const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  const int before = g_listMessages;
  work();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  const int messages = g_listMessages - before;
  std::printf("mode %u, %s: %d messages, %.3f s\n", static_cast<unsigned>(mode), what, messages,
              seconds.count());
  return messages;
}

void selectAt(Driver& user, HWND list, int index) {
  LVITEMA item{};
  item.state = item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  user.send(list, LVM_SETITEMSTATE, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
}

class ListCost : public DirFileTest {
 protected:
  using Costs = std::map<std::string, int>;

  void addItems(int ofEachKind) const {
    for (int i = 0; i < ofEachKind; ++i) {
      addFolder("folder_" + std::to_string(10000 + i));
      addFile("file_" + std::to_string(10000 + i) + ".txt");
    }
  }
  // Runs the dialog with `work` at a list of `items` that the filter has been through.
  void runFiltered(std::uint32_t mode, int items, const std::function<void(Driver&, HWND list)>& work) {
    run({.mode = mode}, [&](Driver& user, HWND dialog) {
      const HWND list = user.waitForList(dialog, static_cast<std::size_t>(items));
      const int filtering = cost("filtering", mode, [&] { user.send(list, LVM_GETSELECTEDCOUNT); });
      EXPECT_GT(filtering, 0) << "the dialog's hook passes messages on";
      EXPECT_LT(filtering, 10 * items) << "a pass of quadratic work";
      user.send(list, LVM_GETSELECTEDCOUNT);  // a folder that has moved to the front
      EXPECT_EQ(user.send(list, LVM_GETITEMCOUNT), mode == kNoFilter ? items : items / 2);
      work(user, list);
      user.press(dialog, IDCANCEL);
    });
    EXPECT_TRUE(FreeFileDialog(std::exchange(outcome.dialog, nullptr)));
  }
  static void expectAtMostTwice(const Costs& costs, const Costs& unfiltered, std::uint32_t mode) {
    for (const auto& [what, messages] : costs) {
      EXPECT_GT(messages, 0) << what << " in mode " << mode;
      EXPECT_LE(messages, 2 * unfiltered.at(what)) << what << " in mode " << mode;
    }
  }

  const ListMessages messages;
};

// Each selection took as long as looking at each item twice or four times.
TEST_F(ListCost, IsThatOfAnUnfilteredListOnceAFolderOf5000HasBeenFiltered) {
  const testing_support::TimeLimit limit(std::chrono::seconds(800));
  addItems(2500);
  Costs unfiltered;
  for (const std::uint32_t mode : {kNoFilter, kListFiles, kListFolders}) {
    Costs costs;
    runFiltered(mode, 5000, [&](Driver& user, HWND list) {
      costs["one"] = cost("selecting one", mode, [&] { selectAt(user, list, 1000); });
      costs["typing"] = cost("typing", mode, [&] { user.send(list, WM_CHAR, 'f', 1); });
      costs["forty"] = cost("selecting forty", mode, [&] {
        for (int i = 0; i < 40; ++i) selectAt(user, list, i);
      });
    });
    if (mode == kNoFilter) unfiltered = costs;
    expectAtMostTwice(costs, unfiltered, mode);
  }
}

// Nothing is removed here: the lists are equal.
TEST_F(ListCost, IsThatOfAnUnfilteredListWhenAllAreSelected) {
  constexpr int kItems = 150;
  for (int i = 0; i < kItems; ++i) addFile("file_" + std::to_string(1000 + i) + ".txt");
  Costs unfiltered;
  for (const std::uint32_t mode : {kNoFilter, kListFiles}) {
    Costs costs;
    run({.mode = mode}, [&](Driver& user, HWND dialog) {
      const HWND list = user.waitForList(dialog, kItems);
      costs["all"] = cost("selecting all", mode, [&] { user.selectAll(list); });
      user.press(dialog, IDCANCEL);
    });
    EXPECT_TRUE(FreeFileDialog(std::exchange(outcome.dialog, nullptr)));
    if (mode == kNoFilter) unfiltered = costs;
    expectAtMostTwice(costs, unfiltered, mode);
  }
}

}  // namespace
