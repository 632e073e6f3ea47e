// SPDX-License-Identifier: MIT
// Listings as people and programs read them.
#pragma once

#include "hosts/qxftp/Context.h"

namespace qxftp {

// Of a directory, by name. None: there is no such directory, which the library lists as an empty one. Throws
// Failure.
[[nodiscard]] std::optional<std::vector<QXDirEntry>> entriesOf(Context& context, const Place& directory);

// The one that the path names, in the listing of its folder. Throws Failure.
[[nodiscard]] std::optional<QXDirEntry> entryOf(Context& context, const Place& place);

// Of a file. The library tells 32 bits, the listing of its folder the rest; of a directory the size of what
// is in it. Throws Failure.
[[nodiscard]] std::uint64_t wholeSize(Context& context, const Place& place);

// "2024-02-29 12:34:56", or "" where the server has told none.
[[nodiscard]] std::string timeText(const QXFileTime& time);

// "d        -  2024-02-29 12:34:56  name/"
[[nodiscard]] std::string longLine(const QXDirEntry& entry);
// The name, of a directory with a slash behind it.
[[nodiscard]] std::string shortLine(const QXDirEntry& entry);

// With "url", by which the very bytes of the name come back; a path that begins at no root has none.
[[nodiscard]] Json jsonOf(const QXDirEntry& entry, const Place& place);

}  // namespace qxftp
