// SPDX-License-Identifier: MIT
// Paths on a server with "*", "?" and "[a-z]" in their last part. They are matched here, not by the server:
// what is removed is what was meant, whatever a server takes a pattern for.
#pragma once

#include <string_view>

#include "hosts/qxftp/Context.h"

namespace qxftp {

[[nodiscard]] bool hasWildcards(std::string_view text);

// Of one name; letters match in their own case. A bracket that is never closed is a plain character.
[[nodiscard]] bool matchesWildcards(std::string_view pattern, std::string_view name);

// "/pub/a" -> "/pub", "a"; "/a" -> "/", "a"; "a" -> ".", "a".
struct SplitPath {
  std::string folder;
  std::string name;
};
[[nodiscard]] SplitPath splitPath(std::string_view path);
[[nodiscard]] std::string joinedPath(const std::string& folder, const std::string& name);

// The entries of the last part's folder that match, by name. Throws Failure, also where there is none and
// for wildcards in another part.
[[nodiscard]] std::vector<QXDirEntry> matchingEntries(Context& context, const Place& place);

// The places of the paths, and of those with wildcards what they stand for. One that stands for nothing is
// told as a failure and left out.
[[nodiscard]] std::vector<Place> expanded(Context& context, const std::vector<std::string>& paths);

}  // namespace qxftp
