// SPDX-License-Identifier: MIT
// A local file that an attempt writes, and whose failures go to OnIPError with the operating system's error
// number.
#pragma once

#include "Src/CollectedFile.h"
#include "Src/QXIP.h"

class LocalFile {
 public:
  LocalFile(TQXIP& client, std::uint32_t* pRetries) noexcept : m_client(client), m_pRetries(pRetries) {}

  [[nodiscard]] bool Open(const char* path, std::uint32_t flags) noexcept { return m_file.Open(path, flags); }
  // Moves to the end; false for an empty file.
  [[nodiscard]] bool SeekBehindContent();
  // As CollectedFile's, but null on failure. That the system does not take the data may show only later, or
  // in Close.
  [[nodiscard]] char* Room(std::uint32_t size);
  void Added(std::uint32_t size) noexcept { m_collected.Added(size); }
  [[nodiscard]] bool Write(const void* data, std::uint32_t size);
  // What was written so far is in the file then.
  [[nodiscard]] bool Flush();
  [[nodiscard]] bool Close();

 private:
  template <typename Work>
  bool Guard(Work&& work);

  TQXIP& m_client;
  std::uint32_t* m_pRetries;
  CFile m_file;
  CollectedFile m_collected{m_file};
};
