// SPDX-License-Identifier: MIT
// mirror: one side of it is a folder here, the other one on a server.
#include <algorithm>
#include <random>

#include "hosts/qxftp/FileJobs.h"
#include "hosts/qxftp/LocalPaths.h"
#include "hosts/qxftp/MirrorPlan.h"
#include "hosts/qxftp/TransferCommands.h"
#include "hosts/shared/Interrupt.h"
#include "hosts/shared/Names.h"
#include "hosts/shared/Terminal.h"

namespace qxftp {
namespace {

namespace fs = std::filesystem;
using hosts::Tree;

struct MirrorOptions {
  std::string source;
  std::string target;
  bool isDry = false;
  bool deletes = false;
  bool isSure = false;
};

bool isPlural(std::uint64_t count) { return count != 1; }

std::string counted(std::uint64_t count, const char* one, const char* several) {
  return std::to_string(count) + " " + (isPlural(count) ? several : one);
}

// Whether somebody sits there who could answer.
bool canAsk() { return hosts::isTerminal(stdin) && hosts::isTerminal(stderr); }

class Mirror {
 public:
  Mirror(Context& context, const MirrorOptions& options) : m_context(context), m_options(options) {
    const bool isDown = hosts::isAddress(options.source);
    if (isDown == hosts::isAddress(options.target)) {
      throw WrongUsage("one of the two has to be an address (ftp://...), the other one a local folder");
    }
    if (options.deletes && !options.isDry && !options.isSure && !canAsk()) {
      throw WrongUsage("--delete asks before it removes anything; where nobody can be asked it wants --yes");
    }
    m_rules.direction = isDown ? Direction::down : Direction::up;
    m_rules.deletes = options.deletes;
    m_place = context.place(isDown ? options.source : options.target);
    m_local = hosts::nameFromServer(isDown ? options.target : options.source);
  }

  void run() {
    m_context.attempt(m_place, [&] {
      const Tree remote = isDown() ? remoteTree() : remoteTarget();
      m_context.refusal().forget();  // of what need not be there
      const Tree local = isDown() ? localTarget() : localSource();
      carryOut(isDown() ? planMirror(remote, local, m_rules) : planUp(local, remote));
    });
  }

 private:
  [[nodiscard]] bool isDown() const { return m_rules.direction == Direction::down; }

  Tree remoteTree() {
    Tree tree = hosts::readRemoteTree(m_context.connected(m_place), m_context.watch(), m_place.path(),
                                      untilInterrupted());
    needUncancelled(tree);
    for (const hosts::Problem& problem : tree.problems) {
      if (problem.path.empty()) fail(problem.text);
    }
    return tree;
  }

  // One that is not there is made.
  Tree remoteTarget() {
    const auto isThere = m_context.connected(m_place).directoryExists(m_place.path());
    if (isThere && !*isThere) {
      m_jobs.push_back({.action = JobAction::makeRemoteFolder, .place = m_place});
      return {};
    }
    return remoteTree();
  }

  Tree localSource() const {
    hosts::Walk walk = untilInterrupted();
    walk.links = hosts::Links::followed;
    Tree tree = hosts::readLocalTree(m_local, walk);
    needUncancelled(tree);
    for (const hosts::Problem& problem : tree.problems) {
      if (problem.path.empty()) fail(hosts::shown(m_local) + ": " + problem.text);
    }
    return tree;
  }

  Tree localTarget() {
    std::error_code error;
    if (!fs::exists(fs::symlink_status(m_local, error))) {
      m_jobs.push_back({.action = JobAction::makeLocalFolder, .place = m_place, .local = m_local});
      return {};
    }
    Tree tree = hosts::readLocalTree(m_local, untilInterrupted());
    needUncancelled(tree);
    return tree;
  }

  MirrorPlan planUp(const Tree& local, const Tree& remote) {
    MirrorPlan plan = planMirror(local, remote, m_rules);
    if (m_options.isDry || !mayBeAMatterOfZones(plan, remote)) return plan;
    m_rules.serverAhead = serverAhead();
    return planMirror(local, remote, m_rules);
  }

  // By a file that is made for it. A server that will not tell is taken to be right.
  std::chrono::seconds serverAhead() {
    const std::string name = "qx-clock-" + std::to_string(std::random_device()()) + ".tmp";
    const std::string path = hosts::joined(m_place.path(), name);
    qx::Client& client = m_context.connected(m_place);
    std::chrono::seconds ahead{0};
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const auto written = client.write(path, std::as_bytes(std::span("clock")));
    if (!written && !hosts::isInterrupted()) return ahead;
    leaving("the file " + path + " may be left on the server", [&] {
      need(written);
      const Tree tree =
          hosts::readRemoteTree(client, m_context.watch(), m_place.path(), {.isRecursive = false});
      for (const hosts::Entry& entry : tree.entries) {
        if (entry.path == name && entry.time) ahead = entry.time->at - now;
      }
      need(client.remove(path));
    });
    return ahead;
  }

  void carryOut(const MirrorPlan& plan) {
    for (const hosts::Problem& problem : plan.problems) tell(problem);
    if (plan.isTooVagueToDelete) {
      tell({"", "nothing is removed, for not all of both sides is known"});
    }
    if (m_options.isDry) return show(plan);
    const bool mayRemove = plan.removals() == 0 || mayDelete(plan);
    for (const MirrorStep& step : plan.steps) {
      if (mayRemove || !isRemoval(step)) m_jobs.push_back(jobOf(step));
    }
    runJobs(m_context, m_jobs);
    if (!hosts::isInterrupted()) m_context.say(summary(plan));
  }

  void tell(const hosts::Problem& problem) {
    const std::string what = problem.path.empty() ? m_place.text : problem.path;
    m_context.one(what, [&](Json&) { fail(problem.text); });
  }

  static bool isRemoval(const MirrorStep& step) {
    return step.action == MirrorAction::removeFile || step.action == MirrorAction::removeFolder;
  }

  static const char* nameOf(const MirrorStep& step, bool isDown) {
    switch (step.action) {
      case MirrorAction::makeFolder:
        return "mkdir";
      case MirrorAction::transfer:
        return isDown ? "get" : "put";
      case MirrorAction::removeFile:
        return "rm";
      case MirrorAction::removeFolder:
        break;
    }
    return "rmdir";
  }

  void show(const MirrorPlan& plan) {
    for (const MirrorStep& step : plan.steps) {
      m_context.one(step.entry.path, [&](Json& result) {
        result["action"] = nameOf(step, isDown());
        result["why"] = step.why;
        m_context.say(std::string(nameOf(step, isDown())) + " " + step.entry.path + " (" + step.why + ")");
      });
    }
    m_context.say(summary(plan));
  }

  static std::string summary(const MirrorPlan& plan) {
    return counted(plan.count(MirrorAction::transfer), "file", "files") + " to move, " +
           counted(plan.count(MirrorAction::makeFolder), "folder", "folders") + " to make, " +
           std::to_string(plan.removals()) + " to remove, " + counted(plan.same, "file is", "files are") +
           " the same";
  }

  bool mayDelete(const MirrorPlan& plan) const {
    if (m_options.isSure) return true;
    constexpr std::uint64_t kShown = 20;
    std::uint64_t shown = 0;
    for (const MirrorStep& step : plan.steps) {
      if (isRemoval(step) && shown++ < kShown) Context::warn("to be removed: " + step.entry.path);
    }
    const auto answer = hosts::ask("Remove " + counted(plan.removals(), "name", "names") + " from " +
                                       (isDown() ? hosts::shown(m_local) : m_place.text) + "? [y/N] ",
                                   hosts::Echo::on);
    return answer && (*answer == "y" || *answer == "Y" || *answer == "yes");
  }

  FileJob jobOf(const MirrorStep& step) const {
    FileJob job{.place = Context::at(m_place, hosts::joined(m_place.path(), step.entry.path)),
                .local = m_local / hosts::pathFromServer(step.entry.path),
                .size = step.entry.size,
                .time = step.entry.time};
    switch (step.action) {
      case MirrorAction::makeFolder:
        job.action = isDown() ? JobAction::makeLocalFolder : JobAction::makeRemoteFolder;
        break;
      case MirrorAction::transfer:
        job.action = isDown() ? JobAction::download : JobAction::upload;
        break;
      case MirrorAction::removeFile:
        job.action = isDown() ? JobAction::removeLocal : JobAction::removeRemoteFile;
        break;
      case MirrorAction::removeFolder:
        job.action = isDown() ? JobAction::removeLocal : JobAction::removeRemoteFolder;
        break;
    }
    if (!step.within.empty()) job.within = hosts::joined(m_place.path(), step.within);
    return job;
  }

  Context& m_context;
  const MirrorOptions& m_options;
  MirrorRules m_rules;
  Place m_place;
  fs::path m_local;
  std::vector<FileJob> m_jobs;
};

}  // namespace

void addMirror(Commands& commands) {
  auto [mirror, options] = commands.add<MirrorOptions>(
      "mirror",
      "Makes the target folder like the source folder; the one that is an address is on a server. Files move "
      "whose size or time differs: a download gets the server's time, an upload is newer than what it was "
      "made of. Names that begin with a dot are left out, for listings do not tell them.",
      "qxftp mirror --dry-run --delete site ftp://me@ftp.example.org/www",
      [](Context& context, const MirrorOptions& asked) { Mirror(context, asked).run(); });
  takeWord(mirror, options.source, "SOURCE", "folder that is read");
  takeWord(mirror, options.target, "TARGET", "folder that is made like it");
  mirror.add_flag("--dry-run", options.isDry, "tells what would be done, and does nothing");
  mirror.add_flag("--delete", options.deletes,
                  "removes from the target what the source has not; asks before, and removes nothing where a "
                  "folder could not be listed");
  mirror.add_flag("--yes", options.isSure, "removes without asking");
}

}  // namespace qxftp
