// SPDX-License-Identifier: MIT
// What the filter of the directory-or-file dialog costs: a dialog that filters works as fast as one that does
// not. It is judged by the messages to the list and by the processor time of the dialog's thread, each
// against the dialog without a filter in the same run.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <map>
#include <string>

#include "tests/dialogs/DirFileTest.h"
#include "tests/dialogs/ManyEntries.h"
#include "tests/support/Watchdog.h"
// Only now:
#include <commctrl.h>

namespace {

using dialog_test::DirFileTest;
using dialog_test::Driver;
using dialog_test::kNoFilter;
using dialog_test::ManyEntries;

std::atomic<int> g_listMessages = 0;

LRESULT CALLBACK countListMessages(int code, WPARAM wParam, LPARAM lParam) {
  const UINT message = reinterpret_cast<const CWPSTRUCT*>(lParam)->message;
  if (code == HC_ACTION && message >= LVM_FIRST && message < LVM_FIRST + 0x100) ++g_listMessages;
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

// Counts what a thread's list views are sent, which makes each message slow.
struct ListMessages {
  explicit ListMessages(DWORD thread)
      : hook(SetWindowsHookExA(WH_CALLWNDPROC, &countListMessages, nullptr, thread)) {}
  ~ListMessages() { UnhookWindowsHookEx(hook); }
  ListMessages(const ListMessages&) = delete;
  ListMessages& operator=(const ListMessages&) = delete;
  const HHOOK hook;
};

// In the system's units, the clock's ticks below Wine.
std::uint64_t processorTime(DWORD thread) {
  const HANDLE handle = OpenThread(THREAD_QUERY_INFORMATION, FALSE, thread);
  FILETIME made{}, ended{}, kernel{}, user{};
  EXPECT_TRUE(GetThreadTimes(handle, &made, &ended, &kernel, &user));
  CloseHandle(handle);
  const auto value = [](FILETIME t) {
    return (static_cast<std::uint64_t>(t.dwHighDateTime) << 32U) | t.dwLowDateTime;
  };
  return value(kernel) + value(user);
}

// Items of the list that the user is at.
constexpr WPARAM kAllItems = static_cast<WPARAM>(-1);

void setState(Driver& user, HWND list, WPARAM index, UINT state) {
  LVITEMA item{};
  item.state = state;
  item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  user.send(list, LVM_SETITEMSTATE, index, reinterpret_cast<LPARAM>(&item));
}

void select(Driver& user, HWND list, int index) {
  setState(user, list, static_cast<WPARAM>(index), LVIS_SELECTED | LVIS_FOCUSED);
}

// The dialog looks at all selected items at each change of one, and would take minutes for thousands: in this
// list it finds none. The filter sees the queries before.
WNDPROC g_procedure = nullptr;
LRESULT CALLBACK showNoSelection(HWND list, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == LVM_GETSELECTEDCOUNT) return 0;
  return CallWindowProcA(g_procedure, list, message, wParam, lParam);
}
void hideSelection(HWND list) {
  const auto with = reinterpret_cast<LONG_PTR>(&showNoSelection);
  g_procedure = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(list, GWLP_WNDPROC, with));
}

using Costs = std::map<std::string, double>;

// How many entries the large folder has; the system's own list takes minutes for thousands.
constexpr const char* kLargeFolder = "QX_LARGE_FOLDER";

// What the user's steps cost in one dialog.
class Meter {
 public:
  Meter(std::uint32_t mode, HWND list) : m_mode(mode), m_thread(GetWindowThreadProcessId(list, nullptr)) {}

  void time(const std::string& what, const std::function<void()>& work, double share = 1) {
    const std::uint64_t before = processorTime(m_thread);
    work();
    add(what + ": processor time", static_cast<double>(processorTime(m_thread) - before) / share);
  }
  void messages(const std::string& what, const std::function<void()>& work, double share = 1) {
    const ListMessages counter(m_thread);
    const int before = g_listMessages;
    work();
    add(what + ": messages", (g_listMessages - before) / share);
  }

  Costs costs;

 private:
  void add(const std::string& what, double cost) {
    std::printf("mode %u, %s: %.0f\n", static_cast<unsigned>(m_mode), what.c_str(), cost);
    costs[what] = cost;
  }
  const std::uint32_t m_mode;
  const DWORD m_thread;
};

class ListCost : public DirFileTest {
 protected:
  // At the list of the folder in outcome.path, when the dialog has drawn it.
  Costs measure(std::uint32_t mode, int items, const std::function<void(Driver&, HWND list, Meter&)>& work) {
    Costs costs;
    runHere({.mode = mode}, [&](Driver& user, HWND dialog) {
      const HWND list = user.waitForList(dialog, static_cast<std::size_t>(items));
      RedrawWindow(dialog, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
      Meter meter(mode, list);
      work(user, list, meter);
      costs = meter.costs;
      user.press(dialog, IDCANCEL);
    });
    EXPECT_TRUE(FreeFileDialog(std::exchange(outcome.dialog, nullptr)));
    return costs;
  }
  // The messages are the same in each run. The time also tells of the machine's other programs, so that it is
  // judged as strictly only where somebody asks for the largest folder, on a machine with nothing else to do.
  static void expectAtMostTwice(const Costs& costs, const Costs& unfiltered) {
    const int mostTime = std::getenv(kLargeFolder) ? 2 : 8;
    for (const auto& [what, cost] : costs) {
      const bool isExact = what.ends_with("messages");
      EXPECT_GT(cost, 0) << what;
      EXPECT_LE(cost, (isExact ? 2 : mostTime) * unfiltered.at(what)) << what;
    }
  }
};

// As many folders as files; the folders come first in a list. The system's own list takes minutes for
// thousands, so more of them only come when QX_LARGE_FOLDER asks.
int entriesOfEachKind() {
  const char* const all = std::getenv(kLargeFolder);
  return (all ? std::stoi(all) : 3000) / 2;
}

void selectFirst(Driver& user, HWND list, Meter& meter, const char* what, int index) {
  meter.time(what, [&] { select(user, list, index); });
  setState(user, list, kAllItems, 0);
}

void work(Driver& user, HWND list, Meter& meter) {
  meter.messages("selecting one", [&] { select(user, list, 1000); });
  meter.messages("typing", [&] { user.send(list, WM_CHAR, 'f', 1); });
  meter.messages("selecting three", [&] {
    for (int i = 0; i < 3; ++i) select(user, list, i);
  });
}

void selectAll(Driver& user, HWND list, Meter& meter) {
  setState(user, list, kAllItems, 0);
  hideSelection(list);
  const auto items = static_cast<double>(user.send(list, LVM_GETITEMCOUNT));
  meter.time(
      "selecting all", [&] { user.selectAll(list); }, items);
  setState(user, list, kAllItems, 0);
  meter.messages(
      "selecting all", [&] { user.selectAll(list); }, items);
}

// Each selection took as long as looking at each item twice or four times, and the first one still did.
TEST_F(ListCost, InALargeFolderIsAtMostTwiceThatOfAnUnfilteredList) {
  const testing_support::TimeLimit limit(std::chrono::seconds(800));
  const int each = entriesOfEachKind();
  const ManyEntries entries(scratch.path(), each, each);
  std::snprintf(outcome.path, sizeof outcome.path, "%s", folder().c_str());
  Costs unfiltered;
  for (const std::uint32_t mode : {kNoFilter, kListFiles, kListFolders}) {
    const Costs costs = measure(mode, 2 * each, [mode, each](Driver& user, HWND list, Meter& meter) {
      if (mode != kListFolders) selectFirst(user, list, meter, "the first file", 2 * each - 100);
      if (mode != kListFiles) selectFirst(user, list, meter, "the first folder", each - 100);
      user.send(list, LVM_GETSELECTEDCOUNT);  // a folder that has moved to the front
      EXPECT_EQ(user.send(list, LVM_GETITEMCOUNT), mode == kNoFilter ? 2 * each : each);
      work(user, list, meter);
      selectAll(user, list, meter);
    });
    if (mode == kNoFilter) unfiltered = costs;
    expectAtMostTwice(costs, unfiltered);
  }
}

// Nothing is removed here: the lists are equal.
TEST_F(ListCost, IsThatOfAnUnfilteredListWhenAllAreSelected) {
  constexpr int kItems = 150;
  for (const std::uint32_t mode : {kListFiles, kListFolders}) {
    const testing_support::ScratchFolder equal;
    const ManyEntries entries(equal.path(), mode == kListFiles ? 0 : kItems, mode == kListFiles ? kItems : 0);
    std::snprintf(outcome.path, sizeof outcome.path, "%s", equal.path().string().c_str());
    const auto costs = [&](std::uint32_t each) {
      return measure(each, kItems, [](Driver& user, HWND list, Meter& meter) {
        meter.messages("selecting all", [&] { user.selectAll(list); });
      });
    };
    const Costs unfiltered = costs(kNoFilter);
    expectAtMostTwice(costs(mode), unfiltered);
  }
}

}  // namespace
