// SPDX-License-Identifier: MIT
// The whole program in a window that nobody sees, at a scripted server: a second thread is its user.
#pragma once

#include <future>
#include <thread>

#include "hosts/qxbrowse/App.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/ui/WindowText.h"
#include "tests/dialogs/Driver.h"
#include "tests/hosts/qxbrowse/LaneTest.h"
#include "tests/support/ProcessCounters.h"
#include "tests/support/ScratchFolder.h"

namespace browse {

class AppTest : public LaneTest {
 protected:
  AppTest() { server.put(R"({"/pub/large": {"size": 700000, "seed": 5}})"); }

  // Runs the program until its window has closed, which the user sees to.
  void run(std::function<void(dialog_test::Driver&)> user) {
    std::optional<App> runs(std::in_place, exports(), scratch.path() / "sites");
    Mailbox box;
    app = &*runs;
    mailbox = &box;
    dialog_test::drive([&] { return runs->run(SW_SHOWNOACTIVATE); }, std::move(user));
    runs.reset();
    ended = std::chrono::steady_clock::now() - closed;
  }

  // What the window's thread answers, in a message of its own.
  template <typename Action>
  auto onWindow(Action action) {
    std::packaged_task<std::invoke_result_t<Action&>()> task(std::move(action));
    auto answer = task.get_future();
    mailbox->post([&task] { task(); });
    return answer.get();
  }
  void later(std::function<void()> action) { mailbox->post(std::move(action)); }

  void logIn(dialog_test::Driver& user) {
    Site site;
    site.host = "127.0.0.1";
    site.port = server.port();
    site.user = "me";
    site.remoteFolder = "/pub";
    site.localFolder = scratch.path().string();
    later([this, site] { app->logIn({site, "secret"}); });
    user.waitUntil("the folder of the server", [this] { return rowsOf(Text::serverFiles) >= 4; });
  }

  [[nodiscard]] HWND frame() {
    return onWindow([] {
      HWND found = nullptr;
      EnumThreadWindows(
          GetCurrentThreadId(),
          [](HWND window, LPARAM result) -> BOOL {
            if (GetMenu(window) == nullptr) return TRUE;
            *reinterpret_cast<HWND*>(result) = window;
            return FALSE;
          },
          reinterpret_cast<LPARAM>(&found));
      return found;
    });
  }
  [[nodiscard]] HWND listOf(Text title) {
    struct Search {
      const wchar_t* title;
      HWND found;
    } search{text(title), nullptr};
    EnumChildWindows(
        frame(),
        [](HWND window, LPARAM address) -> BOOL {
          auto& wanted = *reinterpret_cast<Search*>(address);
          wchar_t name[32] = L"";
          GetClassNameW(window, name, static_cast<int>(std::size(name)));
          if (std::wcscmp(name, WC_LISTVIEWW) == 0 && windowText(window) == wanted.title)
            wanted.found = window;
          return wanted.found == nullptr;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
  }
  [[nodiscard]] LRESULT rowsOf(Text title) { return SendMessageW(listOf(title), LVM_GETITEMCOUNT, 0, 0); }

  // Closes the window, and says yes where a transfer runs still.
  void close(dialog_test::Driver& user) {
    const HWND window = frame();
    closed = std::chrono::steady_clock::now();
    PostMessageW(window, WM_CLOSE, 0, 0);
    bool isAsked = false;
    user.waitUntil("the end or a question", [&] {
      // Asked for once: the box is the last active one before it can be seen.
      const HWND last = GetLastActivePopup(window);
      isAsked = last != window && IsWindowVisible(last);
      return isAsked || !IsWindowVisible(window);
    });
    if (!isAsked) return;
    closed = std::chrono::steady_clock::now();
    user.press(user.waitForBox(window), IDYES);
  }

  void download(const std::vector<std::wstring>& names) {
    std::vector<Place> places;
    for (const std::wstring& name : names) places.push_back({L"/pub/" + name, false, 0});
    later([this, places] { app->download(places, scratch.path().wstring()); });
  }
  void stallDownloads() const {
    server.reconfigure(R"({"rules": [{"on": "RETR", "argument": "/pub/large",
                                      "do": [{"normal": {"stall_after": 300000, "gate": "half"}}]}]})");
  }
  [[nodiscard]] bool isHere(const std::string& name) const {
    return std::filesystem::exists(scratch.path() / name);
  }

  const testing_support::ScratchFolder scratch;
  App* app = nullptr;
  Mailbox* mailbox = nullptr;
  std::chrono::steady_clock::time_point closed;
  std::chrono::steady_clock::duration ended{};  // how long it took since the user has closed the window
};

}  // namespace browse
