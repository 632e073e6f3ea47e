// SPDX-License-Identifier: MIT
// Contract: the calling thread's last-error value and the system's texts for it.
// Both builds use the numbering of Windows; posix/last_error.cpp turns errno into it by one table, so a host
// sees the same numbers everywhere (2 = file not found, 18 = no more files, 87 = invalid parameter, ...).
#pragma once

#include <cstdint>
#include <string>

namespace platform {

// The calling thread's last-error value; 0 on a new thread.
std::uint32_t lastError() noexcept;

void setLastError(std::uint32_t error) noexcept;

// The system's text for `error` as the platform ends it (two characters of line end), or "" when the system
// has none. Leaves the last-error value alone.
std::string systemErrorText(std::uint32_t error);

// Keeps the last-error value over a scope, for clean-up code that must not disturb it.
class LastErrorKeeper {
 public:
  LastErrorKeeper() noexcept : error_(lastError()) {}
  ~LastErrorKeeper() { setLastError(error_); }
  LastErrorKeeper(const LastErrorKeeper&) = delete;
  LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

 private:
  std::uint32_t error_;
};

inline constexpr std::uint32_t kErrorSuccess = 0;
inline constexpr std::uint32_t kErrorFileNotFound = 2;
inline constexpr std::uint32_t kErrorPathNotFound = 3;
inline constexpr std::uint32_t kErrorAccessDenied = 5;
inline constexpr std::uint32_t kErrorInvalidHandle = 6;
inline constexpr std::uint32_t kErrorNotEnoughMemory = 8;
inline constexpr std::uint32_t kErrorNoMoreFiles = 18;
inline constexpr std::uint32_t kErrorSharingViolation = 32;
inline constexpr std::uint32_t kErrorHandleEof = 38;
inline constexpr std::uint32_t kErrorFileExists = 80;
inline constexpr std::uint32_t kErrorInvalidParameter = 87;
inline constexpr std::uint32_t kErrorDiskFull = 112;
inline constexpr std::uint32_t kErrorInsufficientBuffer = 122;
inline constexpr std::uint32_t kErrorAlreadyExists = 183;
inline constexpr std::uint32_t kErrorNameTooLong = 206;

}  // namespace platform
