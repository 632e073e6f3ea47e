// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/RemoteTargets.h"

#include "hosts/shared/Names.h"
#include "hosts/shared/Trees.h"

namespace browse {
namespace {

// As servers compare names that regard no case.
std::string withoutCase(const std::string& name) { return hosts::folded(name, hosts::NameRules::windows); }

RemoteTargets::Found foundOf(const hosts::Entry& entry) {
  const bool isFolder = entry.kind == hosts::Kind::folder;
  return {isFolder, {isFolder ? std::nullopt : std::optional(entry.size), entry.time}};
}

}  // namespace

std::optional<RemoteTargets::Found> RemoteTargets::find(const std::string& path) {
  if (auto found = findShown(path)) return found;
  const Folder& folder = folderAt(hosts::folderOf(path));
  const std::string name = hosts::lastPart(path);
  const bool mayBeThere =
      !folder.isShown || name.starts_with('.') || folder.folded.contains(withoutCase(name));
  return mayBeThere && !folder.isNew ? ask(path) : std::nullopt;
}

std::optional<RemoteTargets::Found> RemoteTargets::findShown(const std::string& path) {
  const Folder& folder = folderAt(hosts::folderOf(path));
  const auto entry = folder.entries.find(hosts::lastPart(path));
  return entry != folder.entries.end() ? std::optional(entry->second) : std::nullopt;
}

const RemoteTargets::Folder& RemoteTargets::folderAt(const std::string& path) {
  const auto known = m_folders.find(path);
  return known != m_folders.end() ? known->second : m_folders.emplace(path, look(path)).first->second;
}

RemoteTargets::Folder RemoteTargets::look(const std::string& path) {
  if (isNew(path)) return {.isNew = true, .isShown = true, .entries = {}, .folded = {}};
  hosts::Walk walk;
  walk.isRecursive = false;
  const hosts::Tree tree = hosts::readRemoteTree(m_session.client, m_session.watch, path, walk);
  Folder folder{.isNew = false, .isShown = tree.problems.empty(), .entries = {}, .folded = {}};
  for (const hosts::Entry& entry : tree.entries) {
    folder.entries.emplace(entry.path, foundOf(entry));
    folder.folded.insert(withoutCase(entry.path));
  }
  return folder;
}

// Whether it was not there when the folder above it was looked at.
bool RemoteTargets::isNew(const std::string& path) const {
  const auto above = m_folders.find(hosts::folderOf(path));
  if (above == m_folders.end() || path == "/") return false;
  const std::string name = hosts::lastPart(path);
  const bool mayBeHidden = name.starts_with('.') || above->second.folded.contains(withoutCase(name));
  return above->second.isNew || (above->second.isShown && !mayBeHidden);
}

std::optional<RemoteTargets::Found> RemoteTargets::ask(const std::string& path) const {
  const auto size = m_session.client.size(path);
  return size ? std::optional(Found{false, {*size, {}}}) : std::nullopt;
}

}  // namespace browse
