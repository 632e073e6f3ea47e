// SPDX-License-Identifier: MIT
#include "hosts/qxftp/LocalPaths.h"

#include <algorithm>

#include "hosts/qxftp/Outcome.h"
#include "hosts/qxftp/Wildcards.h"
#include "hosts/shared/Interrupt.h"
#include "hosts/shared/Names.h"

namespace qxftp {

namespace fs = std::filesystem;

bool isLocalFolder(const fs::path& path) {
  std::error_code error;
  return !path.has_filename() || fs::is_directory(path, error);
}

void needLocalFolder(const fs::path& path) {
  std::error_code error;
  fs::create_directories(path / "", error);
  std::error_code none;
  if (!fs::is_directory(path, none)) fail(hosts::shown(path) + " cannot be a folder: " + error.message());
}

std::vector<fs::path> expandedLocally(const fs::path& path, bool mayHaveWildcards) {
  const std::string pattern = hosts::nameForServer(path.filename());
  if (!mayHaveWildcards || !hasWildcards(pattern)) return {path};
  std::vector<fs::path> found;
  std::error_code error;
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    const std::string name = hosts::nameForServer(entry->path().filename());
    const bool isHidden = name.starts_with('.') && !pattern.starts_with('.');
    if (!isHidden && matchesWildcards(hosts::folded(pattern), hosts::folded(name))) {
      found.push_back(path.parent_path() / entry->path().filename());
    }
  }
  std::ranges::sort(found);
  return found;
}

hosts::Walk untilInterrupted() {
  return {.isCancelled = [] { return hosts::isInterrupted(); }};
}

void needUncancelled(const hosts::Tree& tree) {
  if (tree.isCancelled) throw Failure{{false, true, 0, "cancelled", {}}};
}

}  // namespace qxftp
