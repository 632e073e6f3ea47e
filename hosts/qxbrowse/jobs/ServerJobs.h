// SPDX-License-Identifier: MIT
// What the background thread does for the panes and the queue, each of which makes several calls. Texts and
// paths are the library's.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "hosts/qxbrowse/jobs/Background.h"
#include "hosts/qxbrowse/jobs/Transfer.h"
#include "hosts/shared/Trees.h"

namespace browse {

// A folder that is missing, or that the server does not show, is a failure; the library takes it for empty.
qx::Result<std::vector<QXDirEntry>> listFolder(const Session& session, const std::string& folder);

struct RemotePlace {
  std::string path;
  bool isFolder = false;
};

using Problems = std::vector<hosts::Problem>;  // with whole paths

// Folders with all that is in them. Links are removed, never what they lead to. What fails does not stop the
// rest. Names that begin with a dot are not listed, so a folder that has some stays.
qx::Result<Problems> removePlaces(const Session& session, const std::vector<RemotePlace>& places);

// What is to be transferred, file by file; the folders for it are there by then.
struct Expansion {
  std::vector<Transfer> transfers;  // each with the file that it would replace
  Problems problems;
};

qx::Result<Expansion> expandUpload(const Session& session, const std::vector<std::filesystem::path>& places,
                                   const std::string& toFolder);
// All places are in one folder. Sizes and times are what the server tells now.
qx::Result<Expansion> expandDownload(const Session& session, const std::vector<RemotePlace>& places,
                                     const std::filesystem::path& toFolder);
// Copies to `to`, the new path of a single place, else a folder.
qx::Result<Expansion> expandCopy(const Session& session, const std::vector<RemotePlace>& places,
                                 const std::string& to);

// The same transfers, with what they would replace now. Not of those that the user has agreed to already, nor
// of those to another server than this session's.
qx::Result<Expansion> lookAgain(const Session& session, std::vector<Transfer> transfers,
                                const std::shared_ptr<const qx::Login>& server);

// To `to`, which is as above. Where something is there by the name, or the server cannot, nothing is lost.
qx::Result<Problems> movePlaces(const Session& session, const std::vector<RemotePlace>& places,
                                const std::string& to);

}  // namespace browse
