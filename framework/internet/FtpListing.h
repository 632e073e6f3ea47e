// SPDX-License-Identifier: MIT
// Pure parsers of directory listings; no I/O. Names are bytes as the server sent them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace internet {

struct FtpEntry {
  std::string name;              // without directory; never "", "." or ".."
  std::uint64_t size = 0;        // bytes; 0 for directories and where unknown
  std::int64_t modified = 0;     // seconds since 1970-01-01 UTC; 0 where unknown
  std::uint32_t attributes = 0;  // 0x10 directory, 0x1 read-only, 0x2 hidden, 0x80 normal, ...
  bool isDirectory = false;
  bool isLink = false;           // a symbolic link whose target's kind is unknown
};

struct FtpListing {
  std::vector<FtpEntry> entries;     // in the server's order
  std::size_t unparsedLines = 0;     // rows that are no entry and no known header ("total 88", blank)
  bool cutInLine = false;            // the last row had no line end
  std::string errorText;             // a row that is a server's error message in place of a listing
};

// The facts of one MLSD row or one MLST row (without its leading blank): "type=file;size=3; name".
// False when it is no such row, or names the listed directory or its parent.
bool parseMlsxLine(std::string_view line, FtpEntry& entry);

// One row of LIST in the Unix or the DOS form. `now` (seconds UTC) gives the year where the row has none.
bool parseListLine(std::string_view line, std::int64_t now, FtpEntry& entry);

FtpListing parseMlsd(std::string_view text);
FtpListing parseList(std::string_view text, std::int64_t now);

// Windows file name rules: case-blind; "*" and "*.*" match everything, "*." names without a dot, "name.*" also
// "name"; '?' is one character, or none before a dot or at the end. A name that holds real '*' or '?' matches
// itself.
bool matchesPattern(std::string_view pattern, std::string_view name);

// "YYYYMMDDHHMMSS[.fraction]" in UTC; 0 when it is no such time.
std::int64_t parseMdtmTime(std::string_view text);

}  // namespace internet
