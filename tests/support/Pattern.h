// SPDX-License-Identifier: MIT
// File contents made from (seed, position) alone: tests compare gigabytes without keeping them.
// tests/fixture/pattern.py makes the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace testing_support {

// Any thread.
class Pattern {
 public:
  explicit Pattern(std::uint32_t seed) : seed_(seed) {}

  // Writes the pattern's bytes [position, position + size) to `buffer`.
  void fill(std::uint64_t position, void* buffer, std::size_t size) const;
  // Whether `data` is the pattern from `position` on.
  [[nodiscard]] bool matches(std::uint64_t position, const void* data, std::size_t size) const;

  // Makes or replaces the file with the first `size` bytes. Throws std::runtime_error.
  void writeFile(const std::filesystem::path& path, std::uint64_t size) const;
  // Whether the file holds exactly the first `size` bytes; false also when it cannot be read.
  [[nodiscard]] bool matchesFile(const std::filesystem::path& path, std::uint64_t size) const;

 private:
  std::uint32_t seed_;
};

}  // namespace testing_support
