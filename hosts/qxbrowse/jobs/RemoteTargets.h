// SPDX-License-Identifier: MIT
// What is on the server where something is to go. Each folder is listed once, and none that was not there
// when the one above it was looked at: what has been made since then is empty.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "hosts/qxbrowse/jobs/Background.h"
#include "hosts/qxbrowse/jobs/Transfer.h"

namespace browse {

class RemoteTargets {
 public:
  explicit RemoteTargets(const Session& session) : m_session(session) {}

  struct Found {
    bool isFolder = false;
    FileFacts facts;
  };
  // None: nothing is there by this name. A server that takes "A" for "a", and one that does not show names
  // with a dot in front or the folder at all, is asked for the name itself.
  std::optional<Found> find(const std::string& path);
  // The same of names that the folder shows, in these letters.
  std::optional<Found> findShown(const std::string& path);

 private:
  struct Folder {
    bool isNew = false;
    bool isShown = false;
    std::map<std::string, Found> entries;
    std::set<std::string> folded;
  };
  const Folder& folderAt(const std::string& path);
  Folder look(const std::string& path);
  [[nodiscard]] bool isNew(const std::string& path) const;
  [[nodiscard]] std::optional<Found> ask(const std::string& path) const;

  const Session& m_session;
  std::map<std::string, Folder> m_folders;
};

}  // namespace browse
