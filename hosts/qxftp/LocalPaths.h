// SPDX-License-Identifier: MIT
// Local paths of the command line.
#pragma once

#include <filesystem>
#include <vector>

#include "hosts/shared/Trees.h"

namespace qxftp {

// Whether it is a folder, or is written as one, with a slash behind it.
[[nodiscard]] bool isLocalFolder(const std::filesystem::path& path);

// Makes it where it is not there. Throws Failure.
void needLocalFolder(const std::filesystem::path& path);

// What the wildcards of the last part stand for, by name; the path itself where it has none or they do not
// count. Names that begin with a dot want a dot.
[[nodiscard]] std::vector<std::filesystem::path> expandedLocally(const std::filesystem::path& path,
                                                                 bool mayHaveWildcards);

// A walk that Ctrl-C ends, and what tells that it did. Throws Failure.
[[nodiscard]] hosts::Walk untilInterrupted();
void needUncancelled(const hosts::Tree& tree);

}  // namespace qxftp
