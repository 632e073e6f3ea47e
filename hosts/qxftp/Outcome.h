// SPDX-License-Identifier: MIT
// How a command ended, and the exit codes that say so.
#pragma once

#include <string>

#include "QXResult.h"
#include "hosts/shared/Transfers.h"

namespace qxftp {

enum ExitCode {
  kDone = 0,
  kFailed = 1,
  kWrongUsage = 2,
  kPartlyFailed = 3,
  kNoConnection = 4,
  kAnswerIsNo = 5,
  kNoLibrary = 6,
  kCancelled = 130,
};

// What is wrong about a path, so that the command goes on with the next one.
struct Failure {
  qx::Report report;
};

// A failure of the program's own.
[[noreturn]] void fail(const std::string& text);

// The value, or the failure that there is in place of it.
template <typename Value>
Value need(qx::Result<Value> result) {
  if (!result) throw Failure{result.report()};
  return std::move(result).value();
}

// The same of a file that was to come or to go.
void need(const hosts::Outcome& outcome);

// The report; where Ctrl-C has ended the operation, as one of a cancel with the words about what it has
// `left`.
[[nodiscard]] qx::Report withWhatIsLeft(qx::Report report, const std::string& left);

// What `work`, which changes something, throws as a Failure tells in such words what a cancel may have left.
template <typename Work>
void leaving(const std::string& left, Work&& work) {
  try {
    work();
  } catch (const Failure& failure) {
    throw Failure{withWhatIsLeft(failure.report, left)};
  }
}

// Whether nobody was reached who would do anything: no connection, no encryption or no login. Before a login
// that is what silence and the end of a connection mean as well.
[[nodiscard]] bool isNoConnection(const qx::Report& report, bool hasLoggedIn);

// Counts what became of the paths of a command.
class Tally {
 public:
  void addDone() { ++m_done; }
  void addNo() { ++m_no; }
  void addFailure(const qx::Report& report, bool hasLoggedIn = true);
  [[nodiscard]] ExitCode exitCode() const;

 private:
  int m_done = 0;
  int m_no = 0;
  int m_failed = 0;
  int m_notConnected = 0;
  bool m_isCancelled = false;
};

}  // namespace qxftp
