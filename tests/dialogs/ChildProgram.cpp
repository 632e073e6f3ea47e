// SPDX-License-Identifier: MIT
#include "tests/dialogs/ChildProgram.h"

#include <stdexcept>

namespace dialog_test {
namespace {

constexpr DWORD kLongestRunMs = 200'000;  // the test that waits has 240 s

HANDLE inheritableFile(const std::string& path) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

}  // namespace

ChildProgram::ChildProgram(const std::string& program, const std::string& arguments,
                           const std::string& outputFile) {
  std::string command = "\"" + program + "\" " + arguments;
  const HANDLE output = inheritableFile(outputFile);
  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = start.hStdError = output;
  const BOOL started = CreateProcessA(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                      nullptr, &start, &m_process);
  CloseHandle(output);
  if (!started) throw std::runtime_error("the system does not start " + program);
}

ChildProgram::~ChildProgram() {
  wait();
  CloseHandle(m_process.hThread);
  CloseHandle(m_process.hProcess);
}

DWORD ChildProgram::wait() const {
  if (WaitForSingleObject(m_process.hProcess, kLongestRunMs) != WAIT_OBJECT_0)
    TerminateProcess(m_process.hProcess, kEndedByForce);
  WaitForSingleObject(m_process.hProcess, INFINITE);
  DWORD code = ~DWORD{0};
  GetExitCodeProcess(m_process.hProcess, &code);
  return code;
}

}  // namespace dialog_test
