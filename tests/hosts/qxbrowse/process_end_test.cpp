// SPDX-License-Identifier: MIT
// The end of the real program, in a process of its own, when its window is closed in the middle of something.
// It takes a second at most: with QX_LATENCY=1 that second alone, and the listing has 100,000 entries;
// otherwise a second more than a program that does nothing takes here and now to come and go.
#include <gmock/gmock.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>

#include "hosts/qxbrowse/sites/ConnectDialog.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/window/Commands.h"
#include "tests/dialogs/ChildProgram.h"
#include "tests/dialogs/Driver.h"
#include "tests/hosts/qxbrowse/QuietMachine.h"
#include "tests/hosts/qxbrowse/VisibleWindow.h"
#include "tests/support/Fixture.h"
#include "tests/support/ScratchFolder.h"

namespace browse {
namespace {

namespace fs = std::filesystem;
using std::chrono::steady_clock;

constexpr std::uintmax_t kLarge = std::uintmax_t{1} << 30;
constexpr int kQuestion = 0xFFFF;  // the text of a message box

// The program, and its user.
class RealProgram {
 public:
  explicit RealProgram(const fs::path& folder)
      : m_program(std::getenv("QX_BROWSE_PROGRAM"),
                  "--library \"" + std::string(std::getenv("QX_LIBRARY")) + "\" --sites \"" +
                      (folder / "sites.ini").string() + '"',
                  (folder / "output").string()),
        m_user(m_program.mainThread()) {
    m_user.waitUntil("the main window", [this] {
      return (m_window = visibleWindow(m_program.mainThread(), kMainWindow)) != nullptr;
    });
  }

  // To the site that the file of sites begins with.
  void connect() const {
    order(Command::connect);
    const HWND dialog = m_user.waitForDialog("Connect to a server");
    m_user.press(dialog, connect_dialog::kConnect);
    m_user.waitUntilGone(dialog);
  }
  // Until a side shows it with so many items and more, and above them the way up.
  void waitForFolder(Text side, const std::string& folder, LRESULT count) const {
    const HWND list = listOf(m_window, side);
    const HWND address = GetWindow(list, GW_HWNDPREV);
    m_user.waitUntil(folder, [&] {
      return m_user.textOf(address) == folder && m_user.send(list, LVM_GETITEMCOUNT) > count;
    });
  }
  // All that is in this folder, once its side shows so many items.
  void transfer(Text side, const std::string& folder, LRESULT count) const {
    waitForFolder(side, folder, count);
    m_user.send(listOf(m_window, side), WM_SETFOCUS);
    order(Command::selectAll);
    order(Command::transfer);
  }
  void waitUntilQueued(LRESULT count) const {
    const HWND pane = FindWindowExW(m_window, nullptr, L"qxbrowse.work", nullptr);
    const HWND queue = listOf(pane, Text::queueList);
    m_user.waitUntil("the queue", [&] { return m_user.send(queue, LVM_GETITEMCOUNT) == count; });
  }

  // Closes the window, and waits for the end.
  void close() {
    const auto closed = steady_clock::now();
    PostMessageW(m_window, WM_CLOSE, 0, 0);
    wait(closed);
  }
  // Where it asks whether to cancel what runs; answers its question.
  std::string closeAndCancel() {
    PostMessageW(m_window, WM_CLOSE, 0, 0);
    const HWND box = m_user.waitForBox(m_window);
    const std::string question = m_user.textOf(m_user.control(box, kQuestion));
    const auto closed = steady_clock::now();
    m_user.press(box, IDYES);
    wait(closed);
    return question;
  }

  [[nodiscard]] DWORD exitCode() const { return m_exitCode; }
  // From the user's last word to the end.
  [[nodiscard]] steady_clock::duration took() const { return m_took; }

 private:
  static HWND listOf(HWND parent, Text title) {
    return FindWindowExW(parent, nullptr, WC_LISTVIEWW, text(title));
  }
  void wait(steady_clock::time_point closed) {
    m_exitCode = m_program.wait();
    m_took = steady_clock::now() - closed;
  }
  void order(Command command) const { PostMessageW(m_window, WM_COMMAND, static_cast<WPARAM>(command), 0); }

  const dialog_test::ChildProgram m_program;
  const dialog_test::Driver m_user;
  HWND m_window = nullptr;
  DWORD m_exitCode = ~DWORD{0};
  steady_clock::duration m_took{};
};

class TheProcess : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    const testing_support::ScratchFolder folder;
    const auto begun = steady_clock::now();
    RealProgram program(folder.path());
    program.close();
    EXPECT_EQ(program.exitCode(), 0U);
    s_idle = steady_clock::now() - begun;
  }

  // The program at a folder of the server and the local one.
  RealProgram& begin(const std::string& remoteFolder) {
    std::ofstream(kept.path() / "sites.ini")
        << "[Tests]\nhost=127.0.0.1\nport=" << server.port()
        << "\nuser=me\nlocalFolder=" << here.path().string() << "\nremoteFolder=" << remoteFolder << '\n';
    program.emplace(kept.path());
    program->connect();
    // Until then nothing can be transferred.
    program->waitForFolder(Text::localFiles, here.path().string(), 0);
    return *program;
  }
  void waitForData(int bytes) const { server.waitFor(R"({"data_bytes": )" + std::to_string(bytes) + "}"); }

  void TearDown() override {
    std::printf("the end took %d ms\n", static_cast<int>(program->took() / std::chrono::milliseconds(1)));
    EXPECT_EQ(program->exitCode(), 0U);
    EXPECT_LT(program->took(),
              std::chrono::seconds(1) + (isMachineQuiet() ? steady_clock::duration() : s_idle));
    server.waitUntilAllClosed();
  }

  static inline steady_clock::duration s_idle{};
  const fixture::ScriptedFtp server;
  const testing_support::ScratchFolder kept;
  const testing_support::ScratchFolder here;
  std::optional<RealProgram> program;
};

TEST_F(TheProcess, EndsInTheMiddleOfALargeDownload) {
  server.put(R"({"/pub/zeros": {"zeros": true, "size": )" + std::to_string(kLarge) + "}}");
  server.reconfigure(
      R"({"rules": [{"on": "RETR", "do": [{"normal": {"pace": {"bytes": 65536, "ms": 1}}}]}]})");
  begin("/pub").transfer(Text::serverFiles, "/pub", 1);
  waitForData(1'000'000);
  program->closeAndCancel();
  EXPECT_TRUE(fs::is_empty(here.path())) << "a part is left";
}

TEST_F(TheProcess, EndsInTheMiddleOfALargeUpload) {
  std::ofstream(here.path() / "zeros").close();
  fs::resize_file(here.path() / "zeros", kLarge);
  server.put(R"({"/pub/": {}})");
  server.reconfigure(
      R"({"rules": [{"on": "STOR", "do": [{"normal": {"pace": {"bytes": 65536, "ms": 1}}}]}]})");
  begin("/pub").transfer(Text::localFiles, here.path().string(), 1);
  waitForData(1'000'000);
  EXPECT_THAT(program->closeAndCancel(),
              testing::EndsWith("\n\nA part of /pub/zeros may be left on the server."));
  EXPECT_EQ(fs::file_size(here.path() / "zeros"), kLarge);
  EXPECT_LT(server.size("/pub/zeros"), kLarge);
}

TEST_F(TheProcess, EndsWhenADownloadStalls) {
  server.put(R"({"/pub/large": {"size": 700000, "seed": 5}})");
  server.reconfigure(
      R"({"rules": [{"on": "RETR", "do": [{"normal": {"stall_after": 300000, "gate": "half"}}]}]})");
  begin("/pub").transfer(Text::serverFiles, "/pub", 1);
  server.waitAtGate("half");
  program->closeAndCancel();
  EXPECT_TRUE(fs::is_empty(here.path())) << "a part is left";
}

TEST_F(TheProcess, EndsInTheMiddleOfALargeListing) {
  const std::string count = isMachineQuiet() ? "100000" : "5000";
  server.put(R"({"/many/": {"many": {"size": 1, "count": )" + count + "}}}");
  server.reconfigure(R"({"rules": [{"on": ["LIST", "MLSD"],
                                    "do": [{"normal": {"pace": {"bytes": 256, "ms": 5}}}]}]})");
  begin("/many");
  waitForData(20'000);
  program->close();
}

TEST_F(TheProcess, EndsWithAThousandTransfersWaiting) {
  server.put(R"({"/many/": {"many": {"count": 1000, "size": 100000}}})");
  server.reconfigure(
      R"({"rules": [{"on": "RETR", "do": [{"normal": {"stall_after": 50000, "gate": "half"}}]}]})");
  begin("/many").transfer(Text::serverFiles, "/many", 1000);
  server.waitAtGate("half");
  program->waitUntilQueued(1000);
  program->closeAndCancel();
  EXPECT_TRUE(fs::is_empty(here.path())) << "a part is left";
}

}  // namespace
}  // namespace browse
