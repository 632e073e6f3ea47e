// SPDX-License-Identifier: MIT
#include "hosts/qxftp/TransferCommands.h"

#include <map>
#include <set>

#include "hosts/qxftp/FileJobs.h"
#include "hosts/qxftp/LocalPaths.h"
#include "hosts/qxftp/Wildcards.h"
#include "hosts/shared/Names.h"
#include "hosts/shared/Trees.h"

namespace qxftp {
namespace {

namespace fs = std::filesystem;
using hosts::Entry;
using hosts::Kind;

void needName(const std::string& name) {
  if (const auto reason = hosts::whyNotLocal(name)) fail("cannot be here: " + *reason);
}

class Get {
 public:
  Get(Context& context, const TransferOptions& options) : m_context(context), m_options(options) {}

  void run() {
    std::vector<std::string> sources = m_options.paths;
    const bool hasTarget = sources.size() > 1;
    const std::string targetText = hasTarget ? sources.back() : ".";
    if (hosts::isAddress(targetText)) throw WrongUsage("the last path is the target, which is a local one");
    if (hasTarget) sources.pop_back();
    m_target = hosts::nameFromServer(targetText);
    const std::vector<Place> places = expanded(m_context, sources);
    const bool isPattern = m_context.isPattern(m_context.place(sources[0]));
    m_isInto = isLocalFolder(m_target) || sources.size() > 1 || isPattern;
    if (m_isInto) needLocalFolder(m_target);
    m_context.untilInterrupted(
        places, [&](const Place& place) { m_context.attempt(place, [&] { collect(place); }); });
    runJobs(m_context, m_jobs);
  }

 private:
  void collect(const Place& place) {
    const std::string name = hosts::lastPart(place.path());
    const std::optional<Entry> entry = name.empty() ? Entry{"", Kind::folder, 0, {}} : find(place, name);
    const bool isFile = entry ? entry->kind == Kind::file : !isDirectory(place);
    if (!isFile && !m_options.isRecursive) fail("a folder: -r gets it with all that is in it");
    const fs::path local = name.empty() ? m_target : target(name);
    if (!isFile) return collectFolder(place, local);
    add(place, entry ? *entry : Entry{name, Kind::file, sizeOf(place), {}}, local);
  }

  [[nodiscard]] fs::path target(const std::string& name) const {
    if (!m_isInto) return m_target;
    needName(name);
    return m_target / hosts::nameFromServer(name);
  }

  // In the listing of its folder, which is asked once.
  std::optional<Entry> find(const Place& place, const std::string& name) {
    const Place folder = Context::at(place, hosts::folderOf(place.path()));
    const auto [found, isNew] = m_listings.try_emplace(folder.address.login.host + folder.text);
    if (isNew) {
      found->second = hosts::readRemoteTree(m_context.connected(folder), m_context.watch(), folder.path(),
                                            {.isRecursive = false});
    }
    for (const Entry& entry : found->second.entries) {
      if (entry.path == name) return entry;
    }
    return {};
  }

  // What listings leave out can be there.
  bool isDirectory(const Place& place) {
    return need(m_context.connected(place).directoryExists(place.path()));
  }
  std::uint64_t sizeOf(const Place& place) { return need(m_context.connected(place).size(place.path())); }

  void collectFolder(const Place& place, const fs::path& target) {
    const hosts::Tree tree = hosts::readRemoteTree(m_context.connected(place), m_context.watch(),
                                                   place.path(), untilInterrupted());
    needUncancelled(tree);
    m_jobs.push_back({.action = JobAction::makeLocalFolder, .place = place, .local = target});
    for (const hosts::Problem& problem : tree.problems) tell(below(place, problem.path), problem.text);
    for (const Entry& entry : tree.entries) {
      m_context.attempt(below(place, entry.path), [&] { collectBelow(place, target, entry); });
    }
  }

  static Place below(const Place& place, const std::string& path) {
    return path.empty() ? place : Context::at(place, hosts::joined(place.path(), path));
  }

  void tell(const Place& place, const std::string& text) {
    m_context.attempt(place, [&] { fail(text); });
  }

  // A folder whose name cannot be is told of, and what is below it is left out in silence.
  void collectBelow(const Place& place, const fs::path& target, const Entry& entry) {
    for (const std::string& refused : m_refused) {
      if (entry.path.starts_with(refused)) return;
    }
    const Place source = below(place, entry.path);
    if (const auto reason = hosts::whyNotLocal(hosts::lastPart(entry.path))) {
      if (entry.kind == Kind::folder) m_refused.push_back(entry.path + "/");
      fail("cannot be here: " + *reason);
    }
    const fs::path local = target / hosts::pathFromServer(entry.path);
    if (entry.kind == Kind::file) return add(source, entry, local);
    m_jobs.push_back({.action = JobAction::makeLocalFolder, .place = source, .local = local});
  }

  void add(const Place& place, const Entry& entry, const fs::path& local) {
    if (!m_taken.insert(hosts::folded(hosts::nameForServer(local))).second) {
      fail("another one gets the same name here");
    }
    m_jobs.push_back({.action = JobAction::download,
                      .place = place,
                      .local = local,
                      .size = entry.size,
                      .time = entry.time,
                      .keepsExisting = m_options.keepsExisting});
  }

  Context& m_context;
  const TransferOptions& m_options;
  fs::path m_target;
  bool m_isInto = false;  // the target is the folder for all
  std::vector<FileJob> m_jobs;
  std::map<std::string, hosts::Tree> m_listings;
  std::vector<std::string> m_refused;  // folders, with a slash behind
  std::set<std::string> m_taken;
};

}  // namespace

void addGet(Commands& commands) {
  auto [get, options] = commands.add<TransferOptions>(
      "get",
      "Gets files, with -r folders. The last path is the target: a local folder, or the new name of one "
      "file; a single path goes into the current folder. A file that is there is replaced when the new one "
      "is whole, and not touched before.",
      "qxftp get 'ftp://ftp.example.org/pub/*.iso' Downloads",
      [](Context& context, const TransferOptions& asked) { Get(context, asked).run(); });
  takeTransfer(get, options, "files or folders on a server, and the target");
}

}  // namespace qxftp
