// SPDX-License-Identifier: MIT
// Rows of LIST in the dialects of the world, with what each of them says. They were written after the
// description that stands above them, or taken from a program that was run.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace internet_tests {

enum class Kind { file, directory, link };
inline constexpr Kind F = Kind::file;
inline constexpr Kind D = Kind::directory;
inline constexpr Kind L = Kind::link;

struct DialectRow {
  std::string_view line;
  std::string_view name;
  Kind kind;
  std::uint64_t size;
  std::string_view time;  // "2024-01-12 10:05:33", each part from the clock on may be missing; "" = unknown
};

struct DialectRows {
  std::string_view name;    // of the test
  std::string_view source;  // that the rows were written after
  std::string_view header;  // lines before them
  std::vector<DialectRow> rows;
};

const std::vector<DialectRows>& platformRows();
const std::vector<DialectRows>& unixRows();

}  // namespace internet_tests
