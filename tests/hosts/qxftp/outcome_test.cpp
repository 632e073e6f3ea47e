// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Outcome.h"

#include <gtest/gtest.h>

#include "QXErrorInfo.h"

namespace {

qx::Report failure(std::uint32_t number) { return {true, false, number, "text", {}}; }

}  // namespace

TEST(ExitCode, IsZeroOnlyWhereAllIsDone) {
  qxftp::Tally tally;
  EXPECT_EQ(tally.exitCode(), qxftp::kDone);
  tally.addDone();
  EXPECT_EQ(tally.exitCode(), qxftp::kDone);
  tally.addFailure(failure(0));
  EXPECT_EQ(tally.exitCode(), qxftp::kPartlyFailed);
}

TEST(ExitCode, TellsARefusedLoginFromARefusedFile) {
  qxftp::Tally login;
  login.addFailure(failure(QX_ERROR_INCORRECT_PASSWORD));
  EXPECT_EQ(login.exitCode(), qxftp::kNoConnection);
  qxftp::Tally file;
  file.addFailure(failure(QX_ERROR_REFUSED));
  EXPECT_EQ(file.exitCode(), qxftp::kFailed);
  file.addFailure(failure(QX_ERROR_CANNOT_CONNECT));
  EXPECT_EQ(file.exitCode(), qxftp::kFailed);
}

// A server that accepted and said nothing was a failure like any.
TEST(ExitCode, TellsASilentServerFromOneThatHasTakenTheLogin) {
  for (const std::uint32_t number :
       {std::uint32_t{QX_ERROR_TIMEOUT}, std::uint32_t{QX_ERROR_CONNECTION_ABORTED}}) {
    qxftp::Tally before;
    before.addFailure(failure(number), false);
    EXPECT_EQ(before.exitCode(), qxftp::kNoConnection);
    qxftp::Tally behind;
    behind.addFailure(failure(number), true);
    EXPECT_EQ(behind.exitCode(), qxftp::kFailed);
  }
}

TEST(ExitCode, TellsANoFromAFailure) {
  qxftp::Tally tally;
  tally.addNo();
  tally.addDone();
  EXPECT_EQ(tally.exitCode(), qxftp::kAnswerIsNo);
  tally.addFailure(failure(0));
  EXPECT_EQ(tally.exitCode(), qxftp::kPartlyFailed);
}

TEST(ExitCode, IsThatOfShellsAfterCtrlC) {
  qxftp::Tally tally;
  tally.addDone();
  tally.addFailure({false, true, 0, "cancelled", {}});
  EXPECT_EQ(tally.exitCode(), qxftp::kCancelled);
}
