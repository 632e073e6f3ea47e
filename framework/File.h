// SPDX-License-Identifier: MIT
// Local binary files under the framework's usual name, over platform/file.h.
#pragma once

#include <cstdint>

#include "framework/platform/file.h"

// Thrown by pointer; whoever catches it calls Delete().
class CFileException {
 public:
  explicit CFileException(std::uint32_t osError) noexcept : m_lOsError(osError) {}

  // The system's text for the error without line end, cut to fit and NUL-terminated. False (and "") when
  // there is none.
  bool GetErrorMessage(char* buffer, std::uint32_t size) const noexcept;
  void Delete() noexcept { delete this; }

  std::uint32_t m_lOsError;  // the platform error number
};

class CFile {
 public:
  enum OpenFlags : std::uint32_t {
    modeRead = 0x0000,
    modeWrite = 0x0001,
    modeReadWrite = 0x0002,
    modeCreate = 0x1000,  // creates the file, or empties an existing one
    typeBinary = 0x8000,
    ownerOnly = 0x100000  // the file is for its owner alone from now on
  };

  CFile() noexcept = default;
  // Opens; throws CFileException* on failure.
  CFile(const char* path, std::uint32_t flags);
  ~CFile() = default;

  // False with the last error set on failure. Never throws.
  bool Open(const char* path, std::uint32_t flags) noexcept;
  // These throw CFileException*.
  std::uint32_t Read(void* buffer, std::uint32_t size);  // bytes read; fewer than asked only at the end
  void Write(const void* data, std::uint32_t size);
  std::uint64_t GetLength() const;
  std::uint64_t SeekToEnd();
  void Close();  // a late write error of the system is thrown here

 private:
  platform::File m_file;
};
