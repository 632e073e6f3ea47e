// SPDX-License-Identifier: MIT
// The failure that the internet classes throw, by pointer. Whoever catches it calls Delete().
#pragma once

#include <cstdint>
#include <string>

// Room for any text of GetErrorMessage() that a host is given whole.
inline constexpr std::uint32_t kExceptionTextCapacity = 1024;

class CInternetException {
 public:
  // `text` is the server's own text for error 12003; it may be empty.
  explicit CInternetException(std::uint32_t error, std::string text = {}, bool connectionLost = false);

  // Writes the text of this failure, cut to `size` - 1 characters and NUL-terminated: the server's text where
  // there is one, else the class's own text for the number, else the system's text without its line end.
  // False (and "") when there is none. Leaves the last error alone.
  bool GetErrorMessage(char* buffer, std::uint32_t size) const noexcept;
  void Delete() noexcept { delete this; }

  std::uint32_t m_dwError;  // internet or platform error number
  std::uintptr_t m_dwContext = 1;
  bool m_bConnectionLost;  // a finder's connection is closed, and logging in again has failed

 private:
  std::string m_text;
};

// Throws CInternetException* for `error`. Sets the last error to it first.
[[noreturn]] void AfxThrowInternetException(std::uint32_t error, std::string text = {},
                                            bool connectionLost = false);
