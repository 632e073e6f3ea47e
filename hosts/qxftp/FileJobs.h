// SPDX-License-Identifier: MIT
// Files and folders that are to be moved or made, one after the other, with their progress.
#pragma once

#include <filesystem>
#include <vector>

#include "hosts/qxftp/Context.h"
#include "hosts/qxftp/Display.h"
#include "hosts/shared/Transfers.h"

namespace qxftp {

enum class JobAction {
  download,
  upload,
  makeLocalFolder,
  makeRemoteFolder,
  removeLocal,
  removeRemoteFile,
  removeRemoteFolder
};

struct FileJob {
  JobAction action = JobAction::download;
  Place place = {};                        // on the server
  std::filesystem::path local = {};        // without a meaning where only the server has a part in it
  std::optional<std::uint64_t> size = {};  // of the file, where it is known
  std::optional<hosts::Moment> time = {};  // as the server tells it
  bool keepsExisting = false;              // what is there already stays
  std::string within = {};                 // on the server: the folder that is removed with all below it
};

// Each job is a result of its own (Context.h). After a cancel, on a full disk, and where a server was out of
// reach twice in a row, the others are not tried, and counted as one failure.
void runJobs(Context& context, const std::vector<FileJob>& jobs);

}  // namespace qxftp
