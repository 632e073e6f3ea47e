// SPDX-License-Identifier: MIT
// qxdialogs: shows the library's dialogs, from a menu or by name on the command line. It prints what was
// chosen.
#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "examples/qxdialogs/DemoWindow.h"
#include "examples/qxdialogs/Dialogs.h"

namespace {

enum ExitCode { kDone = 0, kFailed = 1, kWrongUsage = 2 };

int usage() {
  std::fputs("usage: qxdialogs [--library FILE] [DIALOG [PATH]]\ndialogs:", stderr);
  for (const Dialog& dialog : dialogs()) std::fprintf(stderr, " %s", dialog.name);
  std::fputs("\nWithout a name: a window with a menu of them.\n", stderr);
  return kWrongUsage;
}

int run(const SharedLibrary& library, const std::vector<std::string>& arguments) {
  const std::string path = arguments.size() > 1 ? arguments[1] : "";
  if (arguments.empty()) {
    runDemoWindow(library, path);
    return kDone;
  }
  const auto dialog = std::ranges::find_if(
      dialogs(), [&](const Dialog& candidate) { return arguments[0] == candidate.name; });
  if (dialog == dialogs().end() || arguments.size() > 2) return usage();
  const Answer answer = dialog->show({library, nullptr, path});
  std::fputs(answer.confirmed ? answer.text.c_str() : "nothing chosen\n", stdout);
  return answer.confirmed ? kDone : kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    std::string file = clientLibraryPath();
    if (arguments.size() > 1 && arguments[0] == "--library") {
      file = arguments[1];
      arguments.erase(arguments.begin(), arguments.begin() + 2);
    }
    return run(SharedLibrary(file), arguments);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "qxdialogs: %s\n", problem.what());
    return kFailed;
  }
}
