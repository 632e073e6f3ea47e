// SPDX-License-Identifier: MIT
#include "tests/dialogs/OwnProcess.h"

#include <fstream>
#include <sstream>

#include "framework/windows/windows_api.h"
#include "tests/support/ScratchFolder.h"

namespace dialog_test {
namespace {

constexpr const char* kFolder = "QX_TEST_FOLDER";  // is there in a process that runs one test alone
constexpr DWORD kLimitMs = 50'000;                 // the test that waits has 60 s

HANDLE inheritableFile(const std::string& path) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

// The exit code of this program run for one test, its output in `file`.
DWORD runTest(const std::string& test, const std::string& file) {
  char program[MAX_PATH] = "";
  GetModuleFileNameA(nullptr, program, sizeof program);
  std::string command = "\"" + std::string(program) + "\" --gtest_filter=" + test;
  const HANDLE output = inheritableFile(file);
  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = start.hStdError = output;
  PROCESS_INFORMATION process{};
  DWORD code = ~DWORD{0};
  if (CreateProcessA(program, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                     &process)) {
    if (WaitForSingleObject(process.hProcess, kLimitMs) != WAIT_OBJECT_0)
      TerminateProcess(process.hProcess, 42);
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  CloseHandle(output);
  return code;
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
