// SPDX-License-Identifier: MIT
// The program while the library is at work on the window's thread, and how it ends in the middle of that.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <thread>

#include "tests/hosts/qxbrowse/BusyApp.h"

namespace browse {
namespace {

using dialog_test::Driver;

class TheApp : public AppTest {};

TEST_F(TheApp, MovesFilesBothWaysAndShowsThem) {
  run([this](Driver& user) {
    logIn(user);
    download({L"large", L"a.txt"});
    user.waitUntil("the files", [this] { return isHere("large") && isHere("a.txt"); });
    later([this] { app->upload({{(scratch.path() / "large").wstring(), false, 0}}, L"/pub/sub"); });
    user.waitUntil("the upload", [this] { return rowsOf(Text::queueList) == 3; });
    user.waitUntil("its end", [this] {
      return server.exists("/pub/sub/large") && server.size("/pub/sub/large") == 700000;
    });
    close(user);
  });
  EXPECT_TRUE(server.matches("/pub/sub/large", 5, 700000));
}

// Keys did nothing while the library took the thread's messages.
TEST_F(TheApp, TakesKeysDuringATransfer) {
  stallDownloads();
  run([this](Driver& user) {
    logIn(user);
    download({L"large", L"a.txt"});
    server.waitAtGate("half");
    PostMessageW(listOf(Text::serverFiles), WM_KEYDOWN, VK_ESCAPE, 0);
    user.waitUntil("the next transfer", [this] { return isHere("a.txt"); });
    close(user);
  });
  EXPECT_FALSE(isHere("large"));
}

// The question whether something is there asks nobody whether to go on.
TEST_F(TheApp, TakesKeysWhileItLooksForTheTargetOfAnUpload) {
  std::ofstream(scratch.path() / "up") << "content";
  run([this](Driver& user) {
    logIn(user);
    server.reconfigure(R"({"rules": [{"on": "MLST", "argument": "/pub/up", "do": [{"gate": "never"}]}]})");
    later([this] { app->upload({{(scratch.path() / "up").wstring(), false, 0}}, L"/pub"); });
    server.waitAtGate("never");
    const auto pressed = std::chrono::steady_clock::now();
    PostMessageW(listOf(Text::localFiles), WM_KEYDOWN, VK_ESCAPE, 0);
    download({L"a.txt"});
    user.waitUntil("the next transfer", [this] { return isHere("a.txt"); });
    EXPECT_LT(std::chrono::steady_clock::now() - pressed, kSoon);
    close(user);
  });
  EXPECT_FALSE(server.exists("/pub/up"));
}

// A dialog has a loop of messages of its own within the library's.
TEST_F(TheApp, ADialogDuringATransferHoldsNothingButItsEnd) {
  stallDownloads();
  run([this](Driver& user) {
    logIn(user);
    download({L"large", L"a.txt"});
    server.waitAtGate("half");
    later([this] { app->showAbout(); });
    const HWND box = user.waitForBox(frame());
    server.release("half");
    later([this] { app->retryFailed(); });  // asks the queue to go on, within the dialog
    onWindow([] {});
    EXPECT_FALSE(isHere("a.txt")) << "a second transfer within the first";
    user.press(box, IDOK);
    user.waitUntil("both files", [this] { return isHere("large") && isHere("a.txt"); });
    close(user);
  });
}

TEST_F(TheApp, ListsWhileATransferStalls) {
  stallDownloads();
  run([this](Driver& user) {
    logIn(user);
    download({L"large"});
    server.waitAtGate("half");
    server.put(R"({"/pub/sub/x": "1", "/pub/sub/y": "2", "/pub/sub/z": "3", "/pub/sub/zz": "4"})");
    later([this] { app->list(Side::server, L"/pub"); });
    server.put(R"({"/pub/new": "1"})");
    later([this] { app->createFolder(Side::server, L"/pub/newer"); });
    user.waitUntil("the new listing", [this] { return rowsOf(Text::serverFiles) == 6; });
    close(user);
  });
}

// A listing that came behind the end looked for what was selected in a list that was gone, for ever.
TEST_F(TheApp, ShowsNothingBehindItsEnd) {
  const std::wstring here = scratch.path().wstring();
  App services(exports(), scratch.path() / "sites");
  MainWindow window(services);
  window.create();
  window.go(Side::local, here);
  window.showFolder(Side::local, here, ItemList({{L"a.txt", false, 1}}));
  window.go(Side::local, here);
  DestroyWindow(window.handle());
  window.showFolder(Side::local, here, ItemList({{L"b.txt", false, 1}}));
  window.showFolderFailed(Side::local, here, L"gone");
  EXPECT_EQ(window.handle(), nullptr);
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
}

// The window had closed, and its program waited for a server that said nothing.
class TheEndOfTheApp : public AppTest {
 protected:
  void SetUp() override {
    run([this](Driver& user) { close(user); });  // what a first window leaves behind for good is there now
    before = counted();
  }
  [[nodiscard]] std::ptrdiff_t partsHere() const {
    return std::ranges::count_if(std::filesystem::directory_iterator(scratch.path()),
                                 [](const auto& file) { return file.path().extension() == ".part"; });
  }
  // A lock or two of the process are made when they are first waited for.
  void TearDown() override {
    std::printf("the end took %d ms\n", static_cast<int>(ended / std::chrono::milliseconds(1)));
    EXPECT_LT(ended, kSoon);
    const Counts after = settled();
    EXPECT_LE(after.process.threads, before.process.threads);
    EXPECT_EQ(after.gdi, before.gdi);
    EXPECT_EQ(after.user, before.user);
    EXPECT_LE(after.process.handles, before.process.handles + testing_support::kLockHandles);
    server.waitUntilAllClosed();
  }

 private:
  struct Counts {
    DWORD gdi, user;
    testing_support::ProcessCounters process;
  };
  static Counts counted() {
    return {GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS),
            GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), testing_support::processCounters()};
  }

  // Threads of the system's pool end some seconds after their work.
  Counts settled() const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    Counts now = counted();
    while (now.process.threads > before.process.threads && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::yield();
      now = counted();
    }
    return now;
  }

  Counts before{};
};

TEST_F(TheEndOfTheApp, ComesAtOnceDuringADownload) {
  stallDownloads();
  run([this](Driver& user) {
    logIn(user);
    download({L"large", L"a.txt"});
    server.waitAtGate("half");
    close(user);
  });
  EXPECT_FALSE(isHere("large"));
}

TEST_F(TheEndOfTheApp, ComesAtOnceDuringAnUpload) {
  std::ofstream(scratch.path() / "up") << std::string(300000, 'x');
  server.reconfigure(
      R"({"rules": [{"on": "STOR", "do": [{"normal": {"stall_after": 1000, "gate": "half"}}]}]})");
  run([this](Driver& user) {
    logIn(user);
    later([this] { app->upload({{(scratch.path() / "up").wstring(), false, 0}}, L"/pub"); });
    server.waitAtGate("half");
    close(user);
  });
}

// The part of the file stayed, and what the window remembers was lost: the process is ended behind the
// message.
TEST_F(TheEndOfTheApp, HasLeftNothingBehindTheEndOfTheSession) {
  stallDownloads();
  run([this](Driver& user) {
    logIn(user);
    download({L"large", L"a.txt"});
    server.waitAtGate("half");
    const HWND window = frame();
    EXPECT_NE(SendMessageW(window, WM_QUERYENDSESSION, 0, 0), FALSE);
    SendMessageW(window, WM_ENDSESSION, FALSE, 0);  // another program has said no
    EXPECT_NE(partsHere(), 0);
    std::filesystem::remove(scratch.path() / "window.ini");
    closed = std::chrono::steady_clock::now();
    SendMessageW(window, WM_ENDSESSION, TRUE, 0);
    EXPECT_EQ(partsHere(), 0);
    EXPECT_TRUE(isHere("window.ini"));
    user.waitUntilGone(window);
  });
}

// The size that ends an upload asks nobody whether to go on.
TEST_F(TheEndOfTheApp, ComesAtOnceBehindAnUpload) {
  std::ofstream(scratch.path() / "up") << "content";
  server.reconfigure(R"({"rules": [{"on": ["SIZE", "MLST"], "do": [{"gate": "never"}]}]})");
  run([this](Driver& user) {
    logIn(user);
    later([this] { app->upload({{(scratch.path() / "up").wstring(), false, 0}}, L"/pub"); });
    server.waitAtGate("never");
    close(user);
  });
}

TEST_F(TheEndOfTheApp, ComesAtOnceDuringAListing) {
  run([this](Driver& user) {
    logIn(user);
    server.reconfigure(R"({"rules": [{"on": ["LIST", "MLSD"], "do": [{"gate": "never"}]}]})");
    later([this] { app->list(Side::server, L"/pub"); });
    server.waitAtGate("never");
    close(user);
  });
}

TEST_F(TheEndOfTheApp, ComesAtOnceDuringALogin) {
  server.reconfigure(R"({"rules": [{"on": "CONNECT", "do": [{"gate": "never"}]}]})");
  run([this](Driver& user) {
    Site site;
    site.host = "127.0.0.1";
    site.port = server.port();
    later([this, site] { app->logIn({site, "secret"}); });
    server.waitAtGate("never");
    close(user);
  });
}

TEST_F(TheEndOfTheApp, ComesAtOnceWithManyWaiting) {
  stallDownloads();
  server.put(R"({"/pub/many/": {"many": {"count": 1000, "size": 1}}})");
  run([this](Driver& user) {
    logIn(user);
    download({L"large", L"many"});
    server.waitAtGate("half");
    user.waitUntil("all entries", [this] { return rowsOf(Text::queueList) == 1001; });
    close(user);
  });
}

}  // namespace
}  // namespace browse
