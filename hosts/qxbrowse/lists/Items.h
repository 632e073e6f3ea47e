// SPDX-License-Identifier: MIT
// What a list shows of a file or a folder, wherever it is.
#pragma once

#include <cstdint>
#include <string>

namespace browse {

enum class Side { local, server };

struct Item {
  std::wstring name;
  bool isFolder = false;
  std::uint64_t size = 0;  // bytes; 0 for a folder
  std::int64_t time = 0;   // 100 ns since 1601-01-01, a calendar time to be shown as it is; 0: not known
};

// An item where it is.
struct Place {
  std::wstring path;
  bool isFolder = false;
  std::uint64_t size = 0;
};

}  // namespace browse
