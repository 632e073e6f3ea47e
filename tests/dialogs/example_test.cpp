// SPDX-License-Identifier: MIT
// The example program shows the dialogs by name and from its menu, and says what was chosen.
#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>

#include "tests/dialogs/ChildProgram.h"
#include "tests/dialogs/Driver.h"
#include "tests/support/ScratchFolder.h"

namespace {

using dialog_test::ChildProgram;
using dialog_test::Driver;
using testing::StartsWith;

class DialogExample : public testing::Test {
 protected:
  // Runs the program and answers its dialogs; returns its exit code.
  DWORD run(const std::string& arguments, const std::function<void(Driver&)>& answer = {}) {
    const ChildProgram program(std::getenv("QX_DIALOGS_PROGRAM"),
                               "--library " + std::string(std::getenv("QX_LIBRARY")) + " " + arguments,
                               outputs.file("output"));
    Driver user(program.mainThread());
    if (answer) answer(user);
    return program.wait();
  }

  [[nodiscard]] std::string output() const {
    std::ifstream file(outputs.path() / "output");
    return {std::istreambuf_iterator<char>(file), {}};
  }

  const testing_support::ScratchFolder scratch;
  const std::string folder = scratch.path().string();
  const testing_support::ScratchFolder outputs;
};

TEST_F(DialogExample, PrintsTheFolderAndThePathsThatWereChosen) {
  EXPECT_EQ(run("pick-folder " + folder, [](Driver& user) { user.press(user.waitForDialog(), IDOK); }), 0U);
  EXPECT_EQ(output(), folder + "\n" + folder + "\n");
}

TEST_F(DialogExample, SaysThatNothingWasChosen) {
  for (const char* name : {"open", "pick", "pick-files", "pick-folder", "folder"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(run(name, [](Driver& user) { user.press(user.waitForDialog(), IDCANCEL); }), 1U);
    EXPECT_EQ(output(), "nothing chosen\n");
  }
}

TEST_F(DialogExample, ShowsADialogFromItsMenu) {
  constexpr UINT kPickFolder = 103;  // the fourth of the menu
  EXPECT_EQ(run("",
                [](Driver& user) {
                  HWND window = nullptr;
                  user.waitUntil("the program's window", [&] {
                    window = FindWindowA("qxdialogs", nullptr);
                    return window != nullptr && IsWindowVisible(window);
                  });
                  PostMessageA(window, WM_COMMAND, kPickFolder, 0);
                  const HWND dialog = user.waitForDialog();
                  EXPECT_EQ(user.textOf(dialog), "Choose a folder");
                  user.press(dialog, IDCANCEL);
                  const HWND answer = user.child(window, "Static");
                  user.waitUntil("the answer in the window",
                                 [&] { return user.textOf(answer).starts_with("pick-folder: 0"); });
                  PostMessageA(window, WM_CLOSE, 0, 0);
                }),
            0U);
}

TEST_F(DialogExample, NamesItsDialogsWhenItIsAskedForAnother) {
  EXPECT_EQ(run("print"), 2U);
  EXPECT_THAT(output(), StartsWith("usage: qxdialogs"));
}

}  // namespace
