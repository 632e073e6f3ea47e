// SPDX-License-Identifier: MIT
// What changes a server in one step. These throw a Failure, which tells what a cancel may have left: nobody
// knows whether the server has done what it was told.
#pragma once

#include <string>

#include "QXClient.h"
#include "hosts/shared/ListingWatch.h"

namespace qxftp {

void makeDirectory(qx::Client& client, const std::string& path);
void removeFile(qx::Client& client, const std::string& path);
void removeDirectory(qx::Client& client, const std::string& path);
// removeIfLink() of Trees.h.
bool removeLink(qx::Client& client, hosts::ListingWatch& watch, const std::string& path);
void rename(qx::Client& client, const std::string& from, const std::string& to);
// Answers its path.
std::string makeNewDirectory(qx::Client& client, const std::string& parent, const std::string& name);

}  // namespace qxftp
