// SPDX-License-Identifier: MIT
#include "framework/platform/last_error.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "framework/posix/errno_map.h"

namespace platform {
namespace {

constinit thread_local std::uint32_t t_lastError = 0;

struct ErrnoNumber {
  int errnoValue;
  std::uint32_t number;
};

// Read both ways. An errno has the number of its first row; a number has the text of its first row.
constexpr ErrnoNumber kNumbers[] = {
    // Files.
    {ENOENT, kErrorFileNotFound},
    {ENOENT, kErrorPathNotFound},
    {ENOTDIR, kErrorPathNotFound},
    {EMFILE, 4},
    {ENFILE, 4},
    {EACCES, kErrorAccessDenied},
    {EPERM, kErrorAccessDenied},
    {EISDIR, kErrorAccessDenied},
    {EBADF, kErrorInvalidHandle},
    {ENOMEM, kErrorNotEnoughMemory},
    {EXDEV, 17},
    {EROFS, 19},
    {ETXTBSY, kErrorSharingViolation},
    {EOPNOTSUPP, 50},
    {ENODEV, 55},
    {ENXIO, 55},
    {EEXIST, kErrorFileExists},
    {EEXIST, kErrorAlreadyExists},
    {EINVAL, kErrorInvalidParameter},
    {EPIPE, 109},
    {ENOSPC, kErrorDiskFull},
    {EDQUOT, kErrorDiskFull},
    {ENOSYS, 120},
    {ESPIPE, 132},
    {ENOTEMPTY, 145},
    {EBUSY, 170},
    {ENAMETOOLONG, kErrorNameTooLong},
    {EFBIG, 223},
    {ECANCELED, 995},
    {EFAULT, 998},
    {EIO, 1117},
    {EDEADLK, 1131},
    {EMLINK, 1142},
    {ELOOP, 1921},
    // Sockets.
    {EINTR, 10004},
    {EAGAIN, 10035},
    {EINPROGRESS, 10036},
    {EALREADY, 10037},
    {ENOTSOCK, 10038},
    {EDESTADDRREQ, 10039},
    {EMSGSIZE, 10040},
    {EPROTOTYPE, 10041},
    {ENOPROTOOPT, 10042},
    {EPROTONOSUPPORT, 10043},
    {ESOCKTNOSUPPORT, 10044},
    {EOPNOTSUPP, 10045},
    {EPFNOSUPPORT, 10046},
    {EAFNOSUPPORT, 10047},
    {EADDRINUSE, 10048},
    {EADDRNOTAVAIL, 10049},
    {ENETDOWN, 10050},
    {ENETUNREACH, 10051},
    {ENETRESET, 10052},
    {ECONNABORTED, 10053},
    {ECONNRESET, 10054},
    {ENOBUFS, 10055},
    {EISCONN, 10056},
    {ENOTCONN, 10057},
    {ESHUTDOWN, 10058},
    {ETOOMANYREFS, 10059},
    {ETIMEDOUT, 10060},
    {ECONNREFUSED, 10061},
    {EHOSTDOWN, 10064},
    {EHOSTUNREACH, 10065},
};

struct NumberText {
  std::uint32_t number;
  const char* text;
};

// Numbers of ours that no errno stands for.
constexpr NumberText kOwnTexts[] = {
    {kErrorSuccess, "The operation completed successfully."},
    {kErrorNoMoreFiles, "There are no more files."},
    {kErrorSharingViolation, "The file is in use."},
    {kErrorHandleEof, "Reached the end of the file."},
    {kErrorInsufficientBuffer, "The data area passed to a system call is too small."},
};

std::string textOfErrno(int errnoValue) {
  char buffer[256];
  return std::string(::strerror_r(errnoValue, buffer, sizeof buffer)) + "\r\n";
}

}  // namespace

std::uint32_t lastError() noexcept { return t_lastError; }

void setLastError(std::uint32_t error) noexcept { t_lastError = error; }

std::string systemErrorText(std::uint32_t error) {
  const auto own = std::ranges::find(kOwnTexts, error, &NumberText::number);
  if (own != std::end(kOwnTexts)) return std::string(own->text) + "\r\n";
  const auto row = std::ranges::find(kNumbers, error, &ErrnoNumber::number);
  if (row != std::end(kNumbers)) return textOfErrno(row->errnoValue);
  const std::uint32_t errnoValue = error & ~kErrnoBit;
  constexpr std::uint32_t kLargestErrno = 4095;  // the kernel's own bound
  if ((error & kErrnoBit) != 0 && errnoValue <= kLargestErrno)
    return textOfErrno(static_cast<int>(errnoValue));
  return {};
}

std::uint32_t lastErrorFromErrno(int errnoValue) noexcept {
  if (errnoValue == 0) return kErrorSuccess;
  const auto row = std::ranges::find(kNumbers, errnoValue, &ErrnoNumber::errnoValue);
  return row != std::end(kNumbers) ? row->number : kErrnoBit | static_cast<std::uint32_t>(errnoValue);
}

void setLastErrorFromErrno() noexcept { t_lastError = lastErrorFromErrno(errno); }

}  // namespace platform
