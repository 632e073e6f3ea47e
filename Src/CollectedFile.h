// SPDX-License-Identifier: MIT
// A local file that is written in small pieces: they are collected, since each write to the system has its
// price, under Wine a high one.
#pragma once

#include <vector>

#include "framework/File.h"

class CollectedFile {
 public:
  explicit CollectedFile(CFile& file) noexcept : m_file(file) {}
  // What an attempt that was broken off had got still goes into the file, as far as the system takes it.
  ~CollectedFile();
  CollectedFile(const CollectedFile&) = delete;
  CollectedFile& operator=(const CollectedFile&) = delete;

  // Room for a piece, which Added() then tells the size of. Throws CFileException*; that the system does not
  // take the data may show only in a later call, or in Flush().
  [[nodiscard]] char* Room(std::uint32_t size);
  void Added(std::uint32_t size) noexcept { m_used += size; }
  void Flush();

 private:
  static constexpr std::size_t kEnough = std::size_t{1024} * 1024;

  CFile& m_file;
  std::vector<char> m_pieces;  // grows with what comes: many files are small
  std::size_t m_used = 0;      // of m_pieces
};
