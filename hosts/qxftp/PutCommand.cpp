// SPDX-License-Identifier: MIT
#include "hosts/qxftp/TransferCommands.h"

#include "hosts/qxftp/FileJobs.h"
#include "hosts/qxftp/LocalPaths.h"
#include "hosts/shared/Names.h"
#include "hosts/shared/Trees.h"

namespace qxftp {
namespace {

namespace fs = std::filesystem;
using hosts::Entry;
using hosts::Kind;

class Put {
 public:
  Put(Context& context, const TransferOptions& options) : m_context(context), m_options(options) {}

  void run() {
    if (m_options.paths.size() < 2) throw WrongUsage("which file, and where to? put LOCAL... ADDRESS");
    m_target = m_context.place(m_options.paths.back());
    const std::vector<fs::path> sources = localSources();
    m_context.attempt(m_target, [&] {
      m_isInto = m_target.path().ends_with('/') || sources.size() > 1 ||
                 need(m_context.connected(m_target).directoryExists(m_target.path()));
      for (const fs::path& source : sources) collect(source);
    });
    runJobs(m_context, m_jobs);
  }

 private:
  std::vector<fs::path> localSources() {
    std::vector<fs::path> sources;
    for (auto text = m_options.paths.begin(); text + 1 != m_options.paths.end(); ++text) {
      const auto found = expandedLocally(hosts::nameFromServer(*text), mayHaveWildcards());
      if (found.empty()) tell(*text, "nothing has such a name");
      sources.insert(sources.end(), found.begin(), found.end());
    }
    return sources;
  }

  // Elsewhere the shell has put names in their place.
  bool mayHaveWildcards() const {
    return hosts::namesHere() == hosts::NameRules::windows && !m_context.settings().isLiteral;
  }

  void tell(const std::string& what, const std::string& text) {
    m_context.one(what, [&](Json&) { fail(text); });
  }

  // With what begins with a dot, and through links.
  static hosts::Walk allBelow() {
    hosts::Walk walk = untilInterrupted();
    walk.leavesDotNamesOut = false;
    walk.links = hosts::Links::followed;
    return walk;
  }

  void collect(const fs::path& source) {
    std::error_code error;
    const hosts::LocalFacts facts = hosts::factsOf(source, hosts::Links::followed, error);
    if (error) return tell(hosts::shown(source), error.message());
    const Place place = target(source);
    if (const auto reason = hosts::whyNotRemote(hosts::lastPart(place.path())); reason && m_isInto)
      return tell(hosts::shown(source), *reason);
    if (facts.kind == Kind::file) return add(source, facts.size, place);
    if (facts.kind != Kind::folder) return tell(hosts::shown(source), "neither a file nor a folder");
    if (!m_options.isRecursive)
      return tell(hosts::shown(source), "a folder: -r sends it with all that is in it");
    collectFolder(source, place);
  }

  Place target(const fs::path& source) const {
    if (!m_isInto) return m_target;
    const std::string name =
        hosts::nameForServer(fs::absolute(source / "").lexically_normal().parent_path().filename());
    return Context::at(m_target, hosts::joined(m_target.path(), name));
  }

  void collectFolder(const fs::path& source, const Place& place) {
    const hosts::Tree tree = hosts::readLocalTree(source, allBelow());
    needUncancelled(tree);
    m_jobs.push_back({.action = JobAction::makeRemoteFolder, .place = place});
    for (const hosts::Problem& problem : tree.problems)
      tell(hosts::shown(source / hosts::pathFromServer(problem.path)), problem.text);
    for (const Entry& entry : tree.entries) collectBelow(source, place, entry);
  }

  void collectBelow(const fs::path& source, const Place& place, const Entry& entry) {
    const fs::path local = source / hosts::pathFromServer(entry.path);
    const Place below = Context::at(place, hosts::joined(place.path(), entry.path));
    if (const auto reason = hosts::whyNotRemote(hosts::lastPart(entry.path)))
      return tell(hosts::shown(local), *reason);
    if (entry.kind == Kind::file) return add(local, entry.size, below);
    if (entry.kind != Kind::folder) return tell(hosts::shown(local), "neither a file nor a folder");
    m_jobs.push_back({.action = JobAction::makeRemoteFolder, .place = below});
  }

  void add(const fs::path& local, std::uint64_t size, const Place& place) {
    m_jobs.push_back({.action = JobAction::upload,
                      .place = place,
                      .local = local,
                      .size = size,
                      .keepsExisting = m_options.keepsExisting});
  }

  Context& m_context;
  const TransferOptions& m_options;
  Place m_target;
  bool m_isInto = false;
  std::vector<FileJob> m_jobs;
};

}  // namespace

void addPut(Commands& commands) {
  auto [put, options] = commands.add<TransferOptions>(
      "put",
      "Sends files, with -r folders. The last path is the target: a folder on a server, or the new name of "
      "one file. A file that is there is replaced. A file counts as sent when the server has all of its "
      "bytes.",
      "qxftp put -r site/index.html site/pictures ftp://me@ftp.example.org/www/",
      [](Context& context, const TransferOptions& asked) { Put(context, asked).run(); });
  takeTransfer(put, options, "local files or folders, and the target");
}

}  // namespace qxftp
