// SPDX-License-Identifier: MIT
// What the library tells of an entry in two halves, as one number.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "QXDirEntry.h"

namespace hosts {

[[nodiscard]] inline std::uint64_t sizeOf(const QXDirEntry& entry) {
  return (std::uint64_t{entry.nFileSizeHigh} << 32) | entry.nFileSizeLow;
}

// 100 ns since 1601, of a calendar time; 0: none was told.
[[nodiscard]] inline std::uint64_t unitsOf(const QXFileTime& time) {
  return (std::uint64_t{time.nHigh} << 32) | time.nLow;
}

inline void sortByName(std::vector<QXDirEntry>& entries) {
  std::ranges::sort(
      entries, [](const char* a, const char* b) { return std::strcmp(a, b) < 0; }, &QXDirEntry::szName);
}

}  // namespace hosts
