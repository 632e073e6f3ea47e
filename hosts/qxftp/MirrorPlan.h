// SPDX-License-Identifier: MIT
// What has to be done so that a target has what a source has. Two trees and no network.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "hosts/shared/Names.h"
#include "hosts/shared/Trees.h"

namespace qxftp {

enum class Direction { down, up };

struct MirrorRules {
  Direction direction = Direction::down;
  bool deletes = false;  // what the source has not; also where it is in the way
  hosts::NameRules localNames = hosts::namesHere();
  // Local times that are later than this say nothing: the file could not be changed then yet.
  std::chrono::sys_seconds now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
  // How far the server's clock is ahead of this one, where that is known.
  std::chrono::seconds serverAhead{0};
};

enum class MirrorAction { removeFile, removeFolder, makeFolder, transfer };

struct MirrorStep {
  MirrorAction action = MirrorAction::transfer;
  hosts::Entry entry;  // of the target for removals, else of the source
  std::string why;     // "new", "size", "time", "kind", "gone"
  // Of a removal: the topmost folder that goes with all that is below it; empty where a file goes alone.
  std::string within = {};
};

struct MirrorPlan {
  // In the order in which they are done: what is in the way is removed first, what is gone last.
  std::vector<MirrorStep> steps;
  std::vector<hosts::Problem> problems;  // what the trees lack, and what the target cannot have
  // --delete was asked for, and a tree has gaps: nothing is removed.
  bool isTooVagueToDelete = false;
  std::uint64_t same = 0;
  std::uint64_t bytes = 0;  // of all transfers

  [[nodiscard]] std::uint64_t count(MirrorAction action) const;
  [[nodiscard]] std::uint64_t removals() const;
};

// Files are the same when their sizes are and
//  - downwards: their times, as exactly as the listing tells them; a downloaded file gets the server's time.
//  - upwards: the server's file is not older than the one here; it has the time of its upload.
// A file without a time is the same when its size is.
[[nodiscard]] MirrorPlan planMirror(const hosts::Tree& source, const hosts::Tree& target,
                                    const MirrorRules& rules);

// Whether a transfer of the plan is for the sake of times that a wrong zone of the server's would explain.
[[nodiscard]] bool mayBeAMatterOfZones(const MirrorPlan& plan, const hosts::Tree& target);

}  // namespace qxftp
