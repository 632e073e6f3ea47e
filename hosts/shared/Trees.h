// SPDX-License-Identifier: MIT
// What is in a folder and below it, here or on a server. What could not be looked into is told: a tree is
// never shorter than the folder without a word.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "QXClient.h"
#include "hosts/shared/ListingWatch.h"
#include "hosts/shared/LocalFiles.h"
#include "hosts/shared/Moments.h"

namespace hosts {

struct Entry {
  // Below the tree's folder, with slashes, in the library's text (Names.h).
  std::string path;
  Kind kind = Kind::file;  // a server's entries are files and folders
  std::uint64_t size = 0;  // of a file
  std::optional<Moment> time;
};

struct Problem {
  std::string path;  // below the tree's folder; "" is that folder
  std::string text;
};

struct Tree {
  std::vector<Entry> entries;  // a folder stands in front of what is in it
  // Folders that could not be looked into, and names that nobody can use.
  std::vector<Problem> problems;
  bool isCancelled = false;

  bool isWhole() const { return problems.empty() && !isCancelled; }
};

struct Walk {
  bool isRecursive = true;
  // Servers never tell names that begin with a dot; true leaves them out here as well.
  bool leavesDotNamesOut = true;
  // Of a local folder: `followed` takes what links lead to for their content, unless that is a folder above.
  Links links = Links::told;
  // Asked before each folder; true ends the walk there.
  std::function<bool()> isCancelled = nullptr;
  // Told of each folder's path when its entries are there.
  std::function<void(const std::string& path, std::size_t entries)> looked = nullptr;
};

// A folder that is not there is a problem of the path "".
Tree readLocalTree(const std::filesystem::path& folder, const Walk& walk = {});

// Lists folder by folder: over a connection of client.connect() none of them costs a login. `watch` has to be
// told the protocol, line by line, by the client's lambda `line`. isCancelled does not break off a listing
// (EndableClient.h does), but one that has failed then is none.
//  - A folder that leads back to one above it, by a link, is a problem: entries do not tell links. It is
//    known by what is in it, when three folders above it have had the same.
//  - Folders whose path has more than 255 bytes cannot be listed.
Tree readRemoteTree(qx::Client& client, ListingWatch& watch, const std::string& folder,
                    const Walk& walk = {});

// Listings tell a link to a folder as that folder. Removes it where it is one, and nothing that it leads to;
// false where it is none: a server deletes a link like a file, and refuses to delete a folder so. A server
// that has not answered is a failure, for nobody knows then. `watch` as above.
qx::Result<bool> removeIfLink(qx::Client& client, ListingWatch& watch, const std::string& path);

}  // namespace hosts
