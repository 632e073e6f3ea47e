// SPDX-License-Identifier: MIT
// A local file that an attempt writes, and whose failures go to OnIPError with the operating system's error
// number. Small pieces are collected: each write to the system has its price, under Wine a high one.
#pragma once

#include <vector>

#include "Src/QXIP.h"
#include "framework/File.h"

class LocalFile {
 public:
  LocalFile(TQXIP& client, std::uint32_t* pRetries) noexcept : m_client(client), m_pRetries(pRetries) {}

  [[nodiscard]] bool Open(const char* path, std::uint32_t flags) noexcept { return m_file.Open(path, flags); }
  // Moves to the end; false for an empty file.
  [[nodiscard]] bool SeekBehindContent();
  // May find out only later, or in Close, that the system does not take the data.
  [[nodiscard]] bool Write(const void* data, std::uint32_t size);
  // Without it what was collected is lost.
  [[nodiscard]] bool Close();

 private:
  template <typename Work>
  bool Guard(Work&& work);
  void Flush();

  TQXIP& m_client;
  std::uint32_t* m_pRetries;
  CFile m_file;
  std::vector<char> m_collected;
};
