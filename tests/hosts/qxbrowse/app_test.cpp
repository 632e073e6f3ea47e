// SPDX-License-Identifier: MIT
// The whole program in one process, at a server: the user is a second thread.
#include "hosts/qxbrowse/App.h"

#include <gmock/gmock.h>

#include <fstream>

#include "hosts/qxbrowse/sites/ConnectDialog.h"
#include "hosts/qxbrowse/window/Commands.h"
#include "tests/dialogs/Driver.h"
#include "tests/hosts/qxbrowse/LaneTest.h"
#include "tests/hosts/qxbrowse/VisibleWindow.h"
#include "tests/support/ScratchFolder.h"

namespace browse {
namespace {

using dialog_test::Driver;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fields = connect_dialog;

class TheProgram : public LaneTest {
 protected:
  // Runs it until `user` has closed it.
  void run(const std::function<void(Driver&)>& user) {
    const DWORD thread = GetCurrentThreadId();
    dialog_test::drive(
        [this] {
          App app(exports(), scratch.path() / "sites.ini");
          EXPECT_EQ(app.run(SW_SHOWNOACTIVATE), 0);
        },
        [this, thread, &user](Driver& driver) {
          driver.waitUntil("the main window",
                           [&] { return (window = visibleWindow(thread, kMainWindow)) != nullptr; });
          user(driver);
          PostMessageW(window, WM_CLOSE, 0, 0);
          driver.waitUntilGone(window);
        });
  }

  void order(Command command) const { PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(command), 0); }

  void connect(Driver& user, const std::string& password = "secret") {
    order(Command::connect);
    const HWND dialog = user.waitForDialog("Connect to a server");
    user.type(user.control(dialog, fields::kHost), "127.0.0.1");
    user.type(user.control(dialog, fields::kPort), std::to_string(server.port()));
    user.type(user.control(dialog, fields::kUser), "me");
    user.type(user.control(dialog, fields::kPassword), password);
    user.type(user.control(dialog, fields::kLocalFolder), here.path().string());
    user.type(user.control(dialog, fields::kRemoteFolder), "/pub");
    user.press(dialog, fields::kConnect);
    user.waitUntilGone(dialog);
  }

  [[nodiscard]] HWND list(Text title) const {
    return FindWindowExW(window, nullptr, WC_LISTVIEWW, text(title));
  }
  void waitForNames(const Driver& user, Text side, std::vector<std::string> names) const {
    names.insert(names.begin(), "..");
    std::string wanted = "a list with";
    for (const std::string& name : names) wanted += ' ' + name;
    user.waitUntil(wanted, [&] { return user.items(list(side)) == names; });
  }
  void choose(const Driver& user, Text side, const std::string& name) const {
    user.send(list(side), WM_SETFOCUS);
    LVITEMW none{};
    none.stateMask = LVIS_SELECTED;
    user.send(list(side), LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&none));
    user.select(list(side), name);
  }
  [[nodiscard]] std::string status(const Driver& user) const {
    char text[512] = "";
    user.send(user.child(window, STATUSCLASSNAMEA), SB_GETTEXTA, 1, reinterpret_cast<LPARAM>(text));
    return text;
  }
  void answer(const Driver& user, WORD button) const {
    const HWND box = user.waitForBox(window);
    user.press(box, button);
    user.waitUntilGone(box);
  }
  static void answerQuestion(const Driver& user, WORD button) {
    const HWND question = user.waitForDialog("Replace a file?");
    user.press(question, button);
    user.waitUntilGone(question);
  }
  [[nodiscard]] HWND queue(const Driver& user) const {
    return FindWindowExW(user.child(window, "qxbrowse.work"), nullptr, WC_LISTVIEWW, text(Text::queueList));
  }
  // Before that the window asks whether it may close.
  void waitUntilDone(const Driver& user, WPARAM row = 0) const {
    user.waitUntil("the end of the transfer", [&] {
      wchar_t state[64] = L"";
      LVITEMW cell{};
      cell.iSubItem = static_cast<int>(QueueColumn::state);
      cell.pszText = state;
      cell.cchTextMax = static_cast<int>(std::size(state));
      user.send(queue(user), LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(&cell));
      return std::wstring_view(state) == text(Text::queueDone);
    });
  }
  [[nodiscard]] std::string read(const std::string& name) const {
    std::ifstream file(here.path() / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void write(const std::string& name, const std::string& content) const {
    std::ofstream(here.path() / name, std::ios::binary) << content;
  }

  static constexpr Text kLocal = Text::localFiles;
  static constexpr Text kServer = Text::serverFiles;
  const testing_support::ScratchFolder scratch;
  const testing_support::ScratchFolder here;
  HWND window = nullptr;
};

TEST_F(TheProgram, CarriesFilesInBothDirections) {
  write("mine.txt", "from here");
  run([this](Driver& user) {
    connect(user);
    waitForNames(user, kServer, {"sub", "a.txt"});
    waitForNames(user, kLocal, {"mine.txt"});
    choose(user, kLocal, "mine.txt");
    order(Command::transfer);
    waitForNames(user, kServer, {"sub", "a.txt", "mine.txt"});
    choose(user, kServer, "a.txt");
    order(Command::transfer);
    waitForNames(user, kLocal, {"a.txt", "mine.txt"});
  });
  EXPECT_EQ(server.content("/pub/mine.txt"), "from here");
  EXPECT_EQ(std::filesystem::file_size(here.path() / "a.txt"), 1U);
}

// A transfer took the place of a file of the same name without a word.
TEST_F(TheProgram, AsksBeforeItReplacesAFileOnEitherSide) {
  write("a.txt", "mine, and longer");
  run([this](Driver& user) {
    connect(user);
    waitForNames(user, kServer, {"sub", "a.txt"});
    waitForNames(user, kLocal, {"a.txt"});
    choose(user, kServer, "a.txt");
    order(Command::transfer);
    answerQuestion(user, replace_question::kSkip);
    choose(user, kLocal, "a.txt");
    order(Command::transfer);
    answerQuestion(user, replace_question::kReplace);
    waitUntilDone(user);
  });
  EXPECT_EQ(server.content("/pub/a.txt"), "mine, and longer");
  EXPECT_EQ(read("a.txt"), "mine, and longer");
}

TEST_F(TheProgram, AsksAgainWhereAFileHasComeBeforeARetry) {
  server.reconfigure(R"({"rules": [{"on": "RETR", "first": 1, "do": [{"reply": "550 Not now"}]}]})");
  run([this](Driver& user) {
    connect(user);
    waitForNames(user, kServer, {"sub", "a.txt"});
    choose(user, kServer, "a.txt");
    order(Command::transfer);
    user.waitUntil("the failure", [&] { return status(user).find("550") != std::string::npos; });
    write("a.txt", "mine");
    order(Command::retryFailed);
    answerQuestion(user, replace_question::kSkip);
    order(Command::retryFailed);
    answerQuestion(user, replace_question::kReplace);
    waitUntilDone(user);
  });
  EXPECT_EQ(read("a.txt"), "x");
}

// The upload took its place without a word.
TEST_F(TheProgram, AsksBeforeItReplacesAFileThatHasComeWhileAnUploadWaited) {
  for (const char* name : {"first", "mine.txt"}) write(name, "from here");
  run([this](Driver& user) {
    connect(user);
    waitForNames(user, kLocal, {"first", "mine.txt"});
    waitForNames(user, kServer, {"sub", "a.txt"});
    server.reconfigure(
        R"({"rules": [{"on": "STOR", "argument": "/pub/first", "do": [{"gate": "first"}, {"normal": {}}]}]})");
    choose(user, kLocal, "first");
    order(Command::transfer);
    server.waitAtGate("first");
    choose(user, kLocal, "mine.txt");
    order(Command::transfer);
    user.waitUntil("both entries", [&] { return user.send(queue(user), LVM_GETITEMCOUNT) == 2; });
    server.put(R"({"/pub/mine.txt": "somebody's"})");
    server.release("first");
    user.waitUntil("the failure", [&] { return status(user).find("meanwhile") != std::string::npos; });
    EXPECT_EQ(server.content("/pub/mine.txt"), "somebody's");
    order(Command::retryFailed);
    answerQuestion(user, replace_question::kReplace);
    waitUntilDone(user, 1);
  });
  EXPECT_EQ(server.content("/pub/mine.txt"), "from here");
}

TEST_F(TheProgram, ChangesWhatIsOnTheServer) {
  run([this](Driver& user) {
    connect(user);
    waitForNames(user, kServer, {"sub", "a.txt"});
    choose(user, kServer, "a.txt");
    order(Command::newFolder);
    const HWND dialog = user.waitForDialog("qxbrowse");
    user.type(user.control(dialog, 100), "new");
    user.press(dialog, IDOK);
    waitForNames(user, kServer, {"new", "sub", "a.txt"});

    choose(user, kServer, "a.txt");
    order(Command::moveTo);
    const HWND question = user.waitForDialog("qxbrowse");
    user.type(user.control(question, 100), "/pub/new/b.txt");
    user.press(question, IDOK);
    waitForNames(user, kServer, {"new", "sub"});

    choose(user, kServer, "sub");
    order(Command::remove);
    answer(user, IDYES);
    waitForNames(user, kServer, {"new"});
  });
  EXPECT_THAT(server.names("/pub"), ElementsAre("new"));
  EXPECT_THAT(server.names("/pub/new"), ElementsAre("b.txt"));
}

TEST_F(TheProgram, KeepsAPlacementThatItDoesNotUnderstand) {
  std::ofstream(scratch.path() / "window.ini") << "[window]\nleft=a note of mine\n";
  run([this](Driver& user) {
    user.waitUntil("the reason",
                   [&] { return status(user).find("window.broken-1.ini") != std::string::npos; });
  });
  std::ifstream kept(scratch.path() / "window.broken-1.ini");
  const std::string content{std::istreambuf_iterator<char>(kept), {}};
  EXPECT_THAT(content, HasSubstr("a note of mine"));
  EXPECT_FALSE(readPlacement(scratch.path() / "window.ini").isBroken) << "a new one";
}

// Those of the queue were as at the first time at each start.
TEST_F(TheProgram, RemembersTheWidthsOfAllColumns) {
  constexpr WPARAM kColumn = 2;
  run([this](const Driver& user) {
    LPARAM width = 150;
    for (const HWND one : {list(kLocal), list(kServer), queue(user)}) {
      user.send(one, LVM_SETCOLUMNWIDTH, kColumn, ++width);
    }
  });
  run([this](const Driver& user) {
    EXPECT_EQ(user.send(list(kLocal), LVM_GETCOLUMNWIDTH, kColumn), 151);
    EXPECT_EQ(user.send(list(kServer), LVM_GETCOLUMNWIDTH, kColumn), 152);
    EXPECT_EQ(user.send(queue(user), LVM_GETCOLUMNWIDTH, kColumn), 153);
  });
}

TEST_F(TheProgram, TellsWhyItIsNotConnected) {
  run([this](Driver& user) {
    connect(user, "wrong");
    user.waitUntil("the reason", [&] { return status(user).starts_with("127.0.0.1: "); });
    EXPECT_THAT(status(user), HasSubstr("12014"));
  });
}

TEST_F(TheProgram, TellsThatAFolderIsThereAlready) {
  run([this](Driver& user) {
    connect(user);
    waitForNames(user, kServer, {"sub", "a.txt"});
    choose(user, kServer, "a.txt");
    order(Command::newFolder);
    const HWND dialog = user.waitForDialog("qxbrowse");
    user.type(user.control(dialog, 100), "sub");
    user.press(dialog, IDOK);
    user.waitUntil("the reason", [&] { return status(user).find("already") != std::string::npos; });
  });
}

// A server that says nothing more holds neither a listing's end nor the program's.
TEST_F(TheProgram, ClosesInTheMiddleOfAListing) {
  run([this](Driver& user) {
    connect(user);
    waitForNames(user, kServer, {"sub", "a.txt"});
    server.reconfigure(R"({"rules": [{"on": ["LIST", "MLSD"], "do": [{"gate": "never"}]}]})");
    choose(user, kServer, "a.txt");
    order(Command::refresh);
    server.waitAtGate("never");
  });
  server.waitUntilAllClosed();
}

TEST_F(TheProgram, ClosesInTheMiddleOfADownloadWhenTheUserSaysSo) {
  server.put(R"({"/pub/large": {"size": 700000, "seed": 5}})");
  run([this](Driver& user) {
    connect(user);
    waitForNames(user, kServer, {"sub", "a.txt", "large"});
    server.reconfigure(
        R"({"rules": [{"on": "RETR", "do": [{"normal": {"stall_after": 300000, "gate": "half"}}]}]})");
    choose(user, kServer, "large");
    order(Command::transfer);
    server.waitAtGate("half");
    PostMessageW(window, WM_CLOSE, 0, 0);
    answer(user, IDNO);
    EXPECT_TRUE(IsWindowVisible(window)) << "it stays";
    PostMessageW(window, WM_CLOSE, 0, 0);
    answer(user, IDYES);
    user.waitUntilGone(window);
  });
  EXPECT_TRUE(std::filesystem::is_empty(here.path())) << "a part of a file is left";
}

TEST_F(TheProgram, CancelsWhatRunsAtEscape) {
  server.put(R"({"/pub/large": {"size": 700000, "seed": 5}})");
  run([this](Driver& user) {
    connect(user);
    waitForNames(user, kServer, {"sub", "a.txt", "large"});
    server.reconfigure(
        R"({"rules": [{"on": "RETR", "do": [{"normal": {"stall_after": 300000, "gate": "half"}}]}]})");
    choose(user, kServer, "large");
    order(Command::transfer);
    server.waitAtGate("half");
    PostMessageW(list(kServer), WM_KEYDOWN, VK_ESCAPE, 0);
    user.waitUntil("the end of the transfer",
                   [&] { return status(user).find("cancelled") != std::string::npos; });
  });
}

}  // namespace
}  // namespace browse
