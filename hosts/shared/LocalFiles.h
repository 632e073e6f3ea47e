// SPDX-License-Identifier: MIT
// What the standard library does not tell of local files alike on both systems.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

namespace hosts {

enum class Kind { file, folder, link, other };

struct LocalFacts {
  Kind kind = Kind::other;
  std::uint64_t size = 0;
  std::chrono::sys_seconds changed;
};

// Of a link itself, or of what it leads to.
enum class Links { told, followed };

// Empty facts and an error where there is nothing.
LocalFacts factsOf(const std::filesystem::path& path, Links links, std::error_code& error);

// Sets the time of a file's last change.
void setChanged(const std::filesystem::path& path, std::chrono::sys_seconds when, std::error_code& error);

// What its owner and others may do with a file; none where there is no file, and on Windows, where new files
// have that from their folder.
std::optional<std::filesystem::perms> rightsOf(const std::filesystem::path& file);

}  // namespace hosts
