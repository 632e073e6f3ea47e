// SPDX-License-Identifier: MIT
// One entry of a directory on a server.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace internet {

inline constexpr std::size_t kMaxNameLength = 4096;  // bytes; a longer name would fit into no command

// Attribute bits of an entry, numbered as Windows does.
inline constexpr std::uint32_t kEntryReadOnly = 0x01;  // Unix: its owner may not write
inline constexpr std::uint32_t kEntryHidden = 0x02;    // the name begins with a dot
inline constexpr std::uint32_t kEntryDirectory = 0x10;
inline constexpr std::uint32_t kEntryNormal = 0x80;  // a file without any other bit

// All but its name.
struct EntryFacts {
  std::uint64_t size = 0;        // bytes; 0 for directories, links and where unknown
  std::int64_t modified = 0;     // seconds since 1970-01-01 UTC; 0 where unknown
  std::uint32_t attributes = 0;  // kEntry...
  bool isDirectory = false;
  bool isLink = false;  // a symbolic link whose target's kind is unknown
  // `modified` is a clock in the server's own zone, which the row does not tell.
  bool inServersZone = false;
};

struct FtpEntry : EntryFacts {
  // Without directory; never "", "." or "..", never with '/', a control byte or a ".." between backslashes,
  // and shorter than kMaxNameLength.
  std::string name;
};

}  // namespace internet
