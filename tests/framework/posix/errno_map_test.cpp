// SPDX-License-Identifier: MIT
#include "framework/posix/errno_map.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <set>
#include <string>

#include "framework/platform/last_error.h"

namespace {

using platform::lastErrorFromErrno;
using platform::systemErrorText;

TEST(ErrnoMap, GivesTheNumbersThatHostsKnow) {
  const struct {
    int errnoValue;
    std::uint32_t number;
  } rows[] = {
      {0, 0},
      {ENOENT, 2},
      {ENOTDIR, 3},
      {EMFILE, 4},
      {EACCES, 5},
      {EPERM, 5},
      {EISDIR, 5},
      {EBADF, 6},
      {ENOMEM, 8},
      {EXDEV, 17},
      {EROFS, 19},
      {EEXIST, 80},
      {EINVAL, 87},
      {EPIPE, 109},
      {ENOSPC, 112},
      {EDQUOT, 112},
      {ENOSYS, 120},
      {ENOTEMPTY, 145},
      {ENAMETOOLONG, 206},
      {EIO, 1117},
      {EINTR, 10004},
      {EWOULDBLOCK, 10035},
      {EINPROGRESS, 10036},
      {ENOTSOCK, 10038},
      {EADDRINUSE, 10048},
      {ENETDOWN, 10050},
      {ENETUNREACH, 10051},
      {ECONNABORTED, 10053},
      {ECONNRESET, 10054},
      {ENOBUFS, 10055},
      {ENOTCONN, 10057},
      {ETIMEDOUT, 10060},
      {ECONNREFUSED, 10061},
      {EHOSTUNREACH, 10065},
  };
  for (const auto& row : rows) EXPECT_EQ(lastErrorFromErrno(row.errnoValue), row.number) << row.errnoValue;
}

TEST(ErrnoMap, LosesNoErrnoWithoutACounterpart) {
  EXPECT_EQ(lastErrorFromErrno(EKEYREVOKED), platform::kErrnoBit | EKEYREVOKED);
  EXPECT_EQ(systemErrorText(platform::kErrnoBit | EKEYREVOKED),
            std::string(std::strerror(EKEYREVOKED)) + "\r\n");
}

TEST(ErrnoMap, HasATextForEveryErrno) {
  for (int errnoValue = 1; errnoValue < 134; ++errnoValue) {
    if (std::string(std::strerror(errnoValue)).starts_with("Unknown error")) continue;
    EXPECT_NE(systemErrorText(lastErrorFromErrno(errnoValue)), "") << errnoValue;
  }
}

TEST(ErrnoMap, TextsAreTheSystems) {
  for (const int errnoValue :
       {ENOENT, EACCES, EBADF, ENOMEM, EEXIST, EINVAL, ENOSPC, ENAMETOOLONG, ECONNRESET})
    EXPECT_EQ(systemErrorText(lastErrorFromErrno(errnoValue)),
              std::string(std::strerror(errnoValue)) + "\r\n");
  EXPECT_EQ(systemErrorText(3), std::string(std::strerror(ENOENT)) + "\r\n");
  EXPECT_EQ(systemErrorText(18), "There are no more files.\r\n");
}

TEST(ErrnoMap, TakesTheThreadsErrno) {
  errno = ENOSPC;
  platform::setLastErrorFromErrno();
  EXPECT_EQ(platform::lastError(), platform::kErrorDiskFull);
}

}  // namespace
