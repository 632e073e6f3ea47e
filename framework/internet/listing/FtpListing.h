// SPDX-License-Identifier: MIT
// Pure parsers of the rows of directory listings; no I/O. Names are bytes as the server sent them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "framework/internet/listing/FtpEntry.h"

namespace internet {

// One row of MLSD, "type=file;size=3; name". False when it is no such row, or names the listed directory or
// its parent. Facts that are unknown or cannot be read count as missing; without the facts' part (" name")
// everything but the name is unknown. A file is read-only when UNIX.mode says so, or, without that fact, when
// `perm` allows neither to store nor to append.
bool parseMlsxLine(std::string_view line, FtpEntry& entry);

// One row of LIST. False when it is none of these forms, or names the listed directory or its parent.
//   -rw-r--r--   1 owner group   1234 Jan 12 10:05 name      owner, group and link count may be missing
//   drwxr-xr-x+ 12 owner group   4096 Jan 12  2024 name      any type letter; ACL marks
//   brw-rw----   1 owner group   8, 0 2024-01-12 10:05 name
//   lrwxrwxrwx   1 owner group      4 12 Jan 10:05 name -> target
//   -rw-r--r--   1 owner group   1234 12. Mär 08.05 name     months and clocks of `ls` in other languages
//   01-12-24  10:05AM       <DIR>          name              also 4-digit years, 24 hours, seconds
//   2024-01-12  10:05                1,234 name
//   +i1.2,m1705053900,r,s1234,<TAB>name                      EPLF; "/" in place of "r" for a directory
//   NAME.TXT;3   2/4   12-JAN-2024 10:05:33  [OWNER]  (RWED,RE,,)      OpenVMS; blocks of 512 bytes
//   OWNER   1234 01/12/24 10:05:33 *STMF      name           IBM i; "*DIR", "*MEM", ...
//   VOL001 3390   2024/01/12  1   15  FB      80 27920  PS  NAME.DATA        MVS; its sizes are no bytes
//   NAME      01.02 2024/01/10 2024/01/12 10:05    12    10     0 OWNER
//   NAME       0000A70 000208             00 RN RU            31 ANY
//   NAME       101          1234 12-Jan-24 10:05:33 255,255 "NUNU"           HP NonStop
//   - [RWCEAFMS] owner              1234 Jan 12 10:05 name   Netware
// Exactly one blank stands before the name, more belong to it (behind <DIR>: the ten of its column; the
// dialects below EPLF pad their columns). `now` (seconds UTC) gives the year where the row has none: the
// latest that is not more than a day ahead. Times without a zone are taken as UTC. A size of more than 64
// bits makes the row no entry.
bool parseListLine(std::string_view line, std::int64_t now, FtpEntry& entry);

// Windows file name rules: blind to the case of ASCII letters; "*" and "*.*" match everything, "*." names
// without a dot, "name.*" also "name"; '?' is one character (of UTF-8, else one byte), or none before a dot
// or at the end. A name that holds real '*' or '?' matches itself.
bool matchesPattern(std::string_view pattern, std::string_view name);

// "YYYYMMDDHHMMSS[.fraction]" in UTC; 0 when it is no such time.
std::int64_t parseMdtmTime(std::string_view text);

}  // namespace internet
