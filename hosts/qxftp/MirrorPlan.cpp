// SPDX-License-Identifier: MIT
#include "hosts/qxftp/MirrorPlan.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace qxftp {
namespace {

using hosts::Entry;
using hosts::Kind;
using hosts::Moment;

constexpr std::chrono::hours kZonesApart{26};  // the farthest

class Planner {
 public:
  Planner(const hosts::Tree& source, const hosts::Tree& target, const MirrorRules& rules)
      : m_source(source), m_target(target), m_rules(rules) {
    for (const Entry& entry : target.entries) {
      m_there.emplace(key(entry.path), &entry);
      m_exactlyThere.emplace(entry.path, &entry);
    }
    const bool isVague = !source.isWhole() || !target.isWhole();
    m_plan.isTooVagueToDelete = rules.deletes && isVague;
    m_deletes = rules.deletes && !isVague;
  }

  MirrorPlan run() {
    for (const hosts::Problem& problem : m_source.problems) m_plan.problems.push_back(problem);
    for (const hosts::Problem& problem : m_target.problems) m_plan.problems.push_back(problem);
    for (const Entry& entry : m_source.entries) consider(entry);
    if (m_deletes) removeWhatIsGone();
    return std::move(m_plan);
  }

 private:
  [[nodiscard]] std::string key(const std::string& path) const {
    return hosts::folded(path, m_rules.localNames);
  }

  void step(MirrorAction action, const Entry& entry, const std::string& why) {
    m_plan.steps.push_back({action, entry, why});
    if (action == MirrorAction::transfer) m_plan.bytes += entry.size;
  }

  // What is below a refused folder is not looked at, for its folder would be missing.
  void refuse(const Entry& entry, const std::string& why) {
    m_plan.problems.push_back({entry.path, why});
    m_refused.insert(key(entry.path));
    m_seen.insert(key(entry.path));
  }

  void consider(const Entry& entry) {
    if (m_refused.contains(key(hosts::folderOf(entry.path)))) {
      m_refused.insert(key(entry.path));
      m_seen.insert(key(entry.path));
    } else if (const auto reason = whyNotTarget(hosts::lastPart(entry.path))) {
      refuse(entry, *reason);
    } else if (!m_seen.insert(key(entry.path)).second) {
      refuse(entry, "another name differs from this one in case alone");
    } else if (entry.kind != Kind::file && entry.kind != Kind::folder) {
      refuse(entry, "neither a file nor a folder");
    } else {
      place(entry);
    }
  }

  [[nodiscard]] std::optional<std::string> whyNotTarget(const std::string& name) const {
    return m_rules.direction == Direction::down ? hosts::whyNotLocal(name, m_rules.localNames)
                                                : hosts::whyNotRemote(name);
  }

  // A server can have names that are one here; its own one counts first.
  [[nodiscard]] const Entry* find(const std::string& path) const {
    if (const auto exact = m_exactlyThere.find(path); exact != m_exactlyThere.end()) return exact->second;
    const auto found = m_there.find(key(path));
    return found == m_there.end() ? nullptr : found->second;
  }

  void place(const Entry& entry) {
    const Entry* const there = find(entry.path);
    if (there != nullptr && isInTheWay(*there, entry)) {
      if (!m_deletes)
        return refuse(entry, std::string("a ") + nameOf(*there) + " of this name is in the way");
      removeAll(*there);
      return add(entry, "kind");
    }
    if (there == nullptr) return add(entry, "new");
    if (entry.kind == Kind::folder) return;
    if (const char* const why = whyTransfer(entry, *there)) return add(entry, why);
    ++m_plan.same;
  }

  void add(const Entry& entry, const std::string& why) {
    step(entry.kind == Kind::folder ? MirrorAction::makeFolder : MirrorAction::transfer, entry, why);
  }

  // A file takes the place of a link.
  static bool isInTheWay(const Entry& there, const Entry& wanted) {
    if (wanted.kind == Kind::folder) return there.kind != Kind::folder;
    return there.kind == Kind::folder || there.kind == Kind::other;
  }

  static const char* nameOf(const Entry& entry) {
    if (entry.kind == Kind::folder) return "folder";
    return entry.kind == Kind::link ? "link" : "file";
  }

  // Null: they are the same.
  [[nodiscard]] const char* whyTransfer(const Entry& source, const Entry& there) const {
    if (there.kind != Kind::file) return "kind";
    if (source.size != there.size) return "size";
    if (!source.time || !there.time) return nullptr;
    const bool isSame = m_rules.direction == Direction::down ? canBeSame(*source.time, *there.time)
                                                             : isUploaded(*source.time, *there.time);
    return isSame ? nullptr : "time";
  }

  [[nodiscard]] bool isUploaded(const Moment& here, Moment there) const {
    there.at -= m_rules.serverAhead;
    return here.at > m_rules.now || !isSurelyLater(here, there);
  }

  // The target: each folder behind what is in it.
  template <typename Visit>
  void bottomUp(Visit visit) const {
    std::for_each(m_target.entries.rbegin(), m_target.entries.rend(), visit);
  }

  // With all that is below it.
  void removeAll(const Entry& entry) {
    const std::string below = entry.path + "/";
    bottomUp([&](const Entry& other) {
      if (other.path.starts_with(below)) remove(other, "kind", entry.path);
    });
    remove(entry, "kind", entry.kind == Kind::folder ? entry.path : "");
  }

  void remove(const Entry& entry, const std::string& why, const std::string& within) {
    if (!m_removed.insert(entry.path).second) return;
    const auto action = entry.kind == Kind::folder ? MirrorAction::removeFolder : MirrorAction::removeFile;
    m_plan.steps.push_back({action, entry, why, within});
  }

  // The topmost folder that the source has not, down to the path.
  [[nodiscard]] std::string goneFolderOf(const Entry& entry) const {
    for (std::size_t end = entry.path.find('/'); end != std::string::npos;
         end = entry.path.find('/', end + 1)) {
      if (std::string above = entry.path.substr(0, end); !m_seen.contains(key(above))) return above;
    }
    return entry.kind == Kind::folder ? entry.path : "";
  }

  void removeWhatIsGone() {
    bottomUp([this](const Entry& entry) {
      if (!m_seen.contains(key(entry.path))) remove(entry, "gone", goneFolderOf(entry));
    });
  }

  const hosts::Tree& m_source;
  const hosts::Tree& m_target;
  const MirrorRules& m_rules;
  bool m_deletes = false;
  MirrorPlan m_plan;
  // By path, folded as the local system does.
  std::unordered_map<std::string, const Entry*> m_there;
  std::unordered_set<std::string> m_seen;
  std::unordered_set<std::string> m_refused;
  // By path as it is.
  std::unordered_map<std::string, const Entry*> m_exactlyThere;
  std::unordered_set<std::string> m_removed;
};

}  // namespace

std::uint64_t MirrorPlan::count(MirrorAction action) const {
  return static_cast<std::uint64_t>(std::ranges::count(steps, action, &MirrorStep::action));
}

std::uint64_t MirrorPlan::removals() const {
  return count(MirrorAction::removeFile) + count(MirrorAction::removeFolder);
}

MirrorPlan planMirror(const hosts::Tree& source, const hosts::Tree& target, const MirrorRules& rules) {
  return Planner(source, target, rules).run();
}

bool mayBeAMatterOfZones(const MirrorPlan& plan, const hosts::Tree& target) {
  std::unordered_map<std::string, const Entry*> there;
  for (const Entry& entry : target.entries) there.emplace(entry.path, &entry);
  return std::ranges::any_of(plan.steps, [&](const MirrorStep& step) {
    if (step.why != "time" || !there.contains(step.entry.path)) return false;
    return step.entry.time->at - there.at(step.entry.path)->time->at <= kZonesApart;
  });
}

}  // namespace qxftp
