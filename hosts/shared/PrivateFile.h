// SPDX-License-Identifier: MIT
// Files that hold passwords.
#pragma once

#include <filesystem>
#include <string>

namespace hosts {

// Whether nobody but the owner may read the file (and administrators, who read everything). What is no file
// on a disk, such as a pipe, is the business of its two ends.
[[nodiscard]] bool isPrivate(const std::filesystem::path& file);

// How an owner makes a file private on this system: "chmod 600 FILE".
[[nodiscard]] std::string howToMakePrivate(const std::filesystem::path& file);

// The usual netrc file of the user: ".netrc", on Windows "_netrc". Empty where there is no home.
[[nodiscard]] std::filesystem::path usualNetrc();

}  // namespace hosts
