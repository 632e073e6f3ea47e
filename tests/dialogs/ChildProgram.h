// SPDX-License-Identifier: MIT
// A program in a process of its own, its output in a file.
#pragma once

#include <string>

#include "framework/windows/windows_api.h"

namespace dialog_test {

class ChildProgram {
 public:
  static constexpr DWORD kEndedByForce = 42;

  // `arguments` follow the program's name in its command line. Throws std::runtime_error.
  ChildProgram(const std::string& program, const std::string& arguments, const std::string& outputFile);
  ~ChildProgram();  // wait()
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;

  [[nodiscard]] DWORD mainThread() const noexcept { return m_process.dwThreadId; }

  // The exit code; one that has not ended before the limit of a test is ended by force.
  DWORD wait() const;

 private:
  PROCESS_INFORMATION m_process{};
};

}  // namespace dialog_test
