// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/ServerJobs.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "hosts/qxbrowse/jobs/RemoteTargets.h"
#include "hosts/shared/Names.h"

namespace browse {
namespace {

namespace fs = std::filesystem;

constexpr int kDeepest = 200;  // folders in each other

qx::Report failure(std::string text) { return {true, false, 0, std::move(text), {}}; }

// Of a job that tells its problems one by one. One that was stopped has not done all.
template <typename Value>
qx::Result<Value> answerOf(const Session& session, Value value) {
  if (session.isStopped) return {std::nullopt, failure("cancelled")};
  return {std::move(value), {}};
}

std::string targetOf(const std::vector<RemotePlace>& places, const RemotePlace& place,
                     const std::string& to) {
  return places.size() == 1 ? to : hosts::joined(to, hosts::lastPart(place.path));
}

// Most servers replace what is there without a word. Where case alone changes, the name that a server finds
// is the old one.
bool isTaken(RemoteTargets& targets, const std::string& from, const std::string& to) {
  constexpr auto kNoCase = hosts::NameRules::windows;
  const bool isSame = hosts::folded(from, kNoCase) == hosts::folded(to, kNoCase);
  return (isSame ? targets.findShown(to) : targets.find(to)).has_value();
}

class Removal {
 public:
  explicit Removal(const Session& session) : m_session(session) {}

  void remove(const RemotePlace& place, int depth = 0) {
    if (m_session.isStopped) return;
    if (!place.isFolder) return check(place.path, m_session.client.remove(place.path));
    if (m_session.client.removeDirectory(place.path)) return;  // it was empty, or a link
    const auto wasLink =
        hosts::removeIfLink(m_session.client, m_session.watch, place.path);  // one that is listed as a folder
    if (!wasLink || *wasLink) return check(place.path, wasLink);
    if (depth == kDeepest)
      return m_problems.push_back({place.path, "there are too many folders in each other"});
    if (empty(place.path, depth)) check(place.path, m_session.client.removeDirectory(place.path));
  }

  Problems problems() && { return std::move(m_problems); }

 private:
  template <typename Value>
  void check(const std::string& path, const qx::Result<Value>& done) {
    if (!done) m_problems.push_back({path, done.report().text});
  }

  // Whether nothing that could be seen is left.
  bool empty(const std::string& folder, int depth) {
    const std::size_t before = m_problems.size();
    const auto entries = listFolder(m_session, folder);
    if (!entries) m_problems.push_back({folder, entries.report().text});
    for (const QXDirEntry& entry : entries.valueOr({})) {
      remove({hosts::joined(folder, entry.szName), entry.bIsDirectory != 0}, depth + 1);
    }
    return m_problems.size() == before;
  }

  const Session& m_session;
  Problems m_problems;
};

hosts::Walk walkOf(const Session& session) {
  hosts::Walk walk;
  walk.links = hosts::Links::followed;
  walk.isCancelled = [&session] { return session.isStopped.load(); };
  return walk;
}

// What a name that leads to a link leads to is what would be replaced.
std::optional<FileFacts> localFile(const fs::path& path) {
  std::error_code error;
  const hosts::LocalFacts facts = hosts::factsOf(path, hosts::Links::followed, error);
  if (error || facts.kind != hosts::Kind::file) return {};
  return FileFacts{facts.size, hosts::Moment{facts.changed}};
}

std::optional<FileFacts> remoteFile(RemoteTargets& targets, const std::string& path) {
  const auto found = targets.find(path);
  return found && !found->isFolder ? std::optional(found->facts) : std::nullopt;
}

void lookAtTarget(RemoteTargets& targets, Transfer& transfer) {
  switch (transfer.direction) {
    case Direction::download:
      transfer.replaces = localFile(transfer.local);
      break;
    case Direction::upload:
      transfer.replaces = remoteFile(targets, transfer.remote.path);
      break;
    case Direction::copy:
      transfer.replaces = remoteFile(targets, transfer.copy);
      break;
  }
}

// Somebody may have logged in there again meanwhile.
bool isSameServer(const qx::Login& one, const qx::Login& other) {
  return one.host == other.host && one.port == other.port && one.user == other.user;
}

class Expander {
 public:
  explicit Expander(const Session& session) : m_session(session), m_targets(session) {}

  void upload(const fs::path& place, const std::string& to) {
    std::error_code error;
    const hosts::LocalFacts facts = hosts::factsOf(place, hosts::Links::followed, error);
    if (error) return problem(hosts::shown(place), error.message());
    if (facts.kind != hosts::Kind::folder)
      return uploadFile(place, to, facts.size, hosts::Moment{facts.changed});
    const hosts::Tree tree = hosts::readLocalTree(place, walkOf(m_session));
    take(tree, hosts::shown(place));
    if (!makeFolder(to)) return;
    for (const hosts::Entry& entry : tree.entries) uploadEntry(place, entry, hosts::joined(to, entry.path));
  }

  void download(const hosts::Entry& entry, const std::string& folder, const fs::path& to) {
    const std::string path = hosts::joined(folder, entry.path);
    if (const auto why = whyNotHere(entry.path)) return problem(path, *why);
    const fs::path local = to / hosts::pathFromServer(entry.path);
    if (entry.kind == hosts::Kind::folder) return makeLocalFolder(path, local);
    add({Direction::download, {path, entry.size, entry.time}, local, {}, {}, entry.size, entry.time});
  }

  void copy(const RemotePlace& place, const std::string& to) {
    if (to == place.path) return problem(place.path, "this is the file itself");
    if (!place.isFolder) return copyFile(place.path, to);
    const hosts::Tree tree = treeOf(place.path);
    if (!makeFolder(to)) return;
    for (const hosts::Entry& entry : tree.entries)
      copyEntry(place.path, entry, hosts::joined(to, entry.path));
  }

  hosts::Tree treeOf(const std::string& folder, bool isRecursive = true) {
    hosts::Walk walk = walkOf(m_session);
    walk.isRecursive = isRecursive;
    hosts::Tree tree = hosts::readRemoteTree(m_session.client, m_session.watch, folder, walk);
    take(tree, folder);
    return tree;
  }

  void problem(const std::string& path, const std::string& text) {
    m_expansion.problems.push_back({path, text});
  }

  void add(Transfer transfer, bool canLook = true) {
    if (m_session.isStopped) return;
    if (canLook && !transfer.mayReplace) lookAtTarget(m_targets, transfer);
    m_expansion.transfers.push_back(std::move(transfer));
  }

  Expansion expansion() && { return std::move(m_expansion); }

 private:
  static std::vector<std::string> partsOf(std::string_view path) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= path.size();) {
      const std::size_t end = std::min(path.find('/', begin), path.size());
      parts.emplace_back(path.substr(begin, end - begin));
      begin = end + 1;
    }
    return parts;
  }

  // A name that this system takes for another one, or for the same as one before, is told and left out.
  std::optional<std::string> whyNotHere(const std::string& path) {
    for (const std::string& part : partsOf(path)) {
      if (auto why = hosts::whyNotLocal(part)) return why;
    }
    if (m_here.insert(hosts::folded(path)).second) return {};
    return "there is another one whose name differs in the case of letters alone";
  }

  void take(const hosts::Tree& tree, const std::string& folder) {
    for (const hosts::Problem& found : tree.problems) problem(hosts::joined(folder, found.path), found.text);
  }

  bool makeFolder(const std::string& path) {
    if (m_session.isStopped) return false;
    const auto there = m_targets.find(path);
    if (there && there->isFolder) return true;
    const auto made = m_session.client.createDirectory(path);
    if (!made) problem(path, made.report().text);
    return static_cast<bool>(made);
  }

  void makeLocalFolder(const std::string& path, const fs::path& local) {
    std::error_code error;
    fs::create_directories(local, error);
    if (error) problem(path, error.message());
  }

  void uploadFile(const fs::path& local, const std::string& to, std::uint64_t size,
                  const std::optional<hosts::Moment>& time) {
    add({Direction::upload, {to, {}, {}}, local, {}, {}, size, time});
  }

  // What it would replace is compared with it.
  void copyFile(const std::string& from, const std::string& to) {
    const auto found = m_targets.findShown(from);
    const FileFacts facts = found ? found->facts : FileFacts{};
    add({Direction::copy, {from, facts.size, facts.time}, {}, to, {}, facts.size, facts.time});
  }

  void uploadEntry(const fs::path& folder, const hosts::Entry& entry, const std::string& to) {
    const fs::path local = folder / hosts::pathFromServer(entry.path);
    if (entry.kind == hosts::Kind::folder) return static_cast<void>(makeFolder(to));
    if (entry.kind == hosts::Kind::file) return uploadFile(local, to, entry.size, entry.time);
    problem(hosts::shown(local), "this is neither a file nor a folder");
  }

  void copyEntry(const std::string& folder, const hosts::Entry& entry, const std::string& to) {
    if (entry.kind == hosts::Kind::folder) return static_cast<void>(makeFolder(to));
    const std::string from = hosts::joined(folder, entry.path);
    add({Direction::copy, {from, entry.size, entry.time}, {}, to, {}, entry.size, entry.time});
  }

  const Session& m_session;
  RemoteTargets m_targets;
  Expansion m_expansion;
  std::set<std::string> m_here;
};

}  // namespace

qx::Result<std::vector<QXDirEntry>> listFolder(const Session& session, const std::string& folder) {
  session.watch.begin();
  auto entries = session.client.list(folder, "*");
  if (!entries || session.watch.hasCome()) return entries;
  const std::string& refusal = session.watch.refusal();
  return {std::nullopt, failure(refusal.empty() ? "the server has sent no listing" : refusal)};
}

qx::Result<Problems> removePlaces(const Session& session, const std::vector<RemotePlace>& places) {
  Removal removal(session);
  for (const RemotePlace& place : places) removal.remove(place);
  return answerOf(session, std::move(removal).problems());
}

qx::Result<Expansion> expandUpload(const Session& session, const std::vector<fs::path>& places,
                                   const std::string& toFolder) {
  Expander expander(session);
  for (const fs::path& place : places) {
    expander.upload(place, hosts::joined(toFolder, hosts::nameForServer(place.filename())));
  }
  return answerOf(session, std::move(expander).expansion());
}

qx::Result<Expansion> expandDownload(const Session& session, const std::vector<RemotePlace>& places,
                                     const fs::path& toFolder) {
  Expander expander(session);
  const std::string folder = places.empty() ? "/" : hosts::folderOf(places.front().path);
  const hosts::Tree listed = expander.treeOf(folder, false);
  for (const RemotePlace& place : places) {
    const std::string name = hosts::lastPart(place.path);
    const auto entry = std::ranges::find(listed.entries, name, &hosts::Entry::path);
    if (entry == listed.entries.end()) {
      expander.problem(place.path, "it is no longer there");
      continue;
    }
    expander.download(*entry, folder, toFolder);
    if (entry->kind != hosts::Kind::folder) continue;
    for (hosts::Entry& inside : expander.treeOf(place.path).entries) {
      inside.path = hosts::joined(name, inside.path);
      expander.download(inside, folder, toFolder);
    }
  }
  return answerOf(session, std::move(expander).expansion());
}

qx::Result<Expansion> expandCopy(const Session& session, const std::vector<RemotePlace>& places,
                                 const std::string& to) {
  Expander expander(session);
  for (const RemotePlace& place : places) expander.copy(place, targetOf(places, place, to));
  return answerOf(session, std::move(expander).expansion());
}

qx::Result<Expansion> lookAgain(const Session& session, std::vector<Transfer> transfers,
                                const std::shared_ptr<const qx::Login>& server) {
  Expander expander(session);
  for (Transfer& transfer : transfers) {
    const bool canLook = transfer.direction == Direction::download || isSameServer(*transfer.server, *server);
    expander.add(std::move(transfer), canLook);
  }
  return answerOf(session, std::move(expander).expansion());
}

qx::Result<Problems> movePlaces(const Session& session, const std::vector<RemotePlace>& places,
                                const std::string& to) {
  Problems problems;
  RemoteTargets targets(session);
  for (const RemotePlace& place : places) {
    if (session.isStopped) break;
    const std::string target = targetOf(places, place, to);
    if (isTaken(targets, place.path, target)) {
      problems.push_back({place.path, "there is one of that name already"});
      continue;
    }
    const auto moved = session.client.rename(place.path, target);
    if (!moved) problems.push_back({place.path, moved.report().text});
  }
  return answerOf(session, std::move(problems));
}

}  // namespace browse
