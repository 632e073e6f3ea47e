// SPDX-License-Identifier: MIT
#include "tests/dialogs/OwnProcess.h"

#include <fstream>
#include <sstream>

#include "tests/dialogs/ChildProgram.h"
#include "tests/support/ScratchFolder.h"

namespace dialog_test {
namespace {

constexpr const char* kFolder = "QX_TEST_FOLDER";  // is there in a process that runs one test alone

// The exit code of this program run for one test, its output in `file`.
DWORD runTest(const std::string& test, const std::string& file) {
  char program[MAX_PATH] = "";
  GetModuleFileNameA(nullptr, program, sizeof program);
  return ChildProgram(program, "--gtest_filter=" + test, file).wait();
}

// Indented, so that whoever counts passed and failed cases does not count these.
std::string quoted(const std::string& file) {
  std::ifstream input(file);
  std::ostringstream text;
  for (std::string line; std::getline(input, line);) text << "  | " << line << '\n';
  return text.str();
}

}  // namespace

std::string ownFolder() {
  char path[MAX_PATH] = "";
  return std::string(path, GetEnvironmentVariableA(kFolder, path, sizeof path));
}

void inOwnProcess(void (*body)()) {
  if (!ownFolder().empty()) return body();
  const auto* const info = testing::UnitTest::GetInstance()->current_test_info();
  const testing_support::ScratchFolder scratch;
  const std::string output = scratch.file("output.txt");
  SetEnvironmentVariableA(kFolder, scratch.path().string().c_str());
  const DWORD code = runTest(std::string(info->test_suite_name()) + "." + info->name(), output);
  SetEnvironmentVariableA(kFolder, nullptr);
  EXPECT_EQ(code, 0U) << quoted(output);
}

}  // namespace dialog_test
