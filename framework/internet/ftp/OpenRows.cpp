// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/OpenRows.h"

#include <algorithm>
#include <utility>

#include "framework/internet/listing/FtpListing.h"
#include "framework/internet/net/InternetLimits.h"

namespace internet {
namespace {

constexpr int kMinute = 60;
// Zones differ from UTC by so many quarters of an hour, and by so many hours at most.
constexpr int kQuarter = 15 * kMinute;
constexpr int kFarthestZone = 15 * 60 * kMinute;
constexpr int kMostZoneQuestions = 3;
// Of links that are asked about together: a server that is slow at each must not take too long for all.
constexpr std::size_t kLinksTogether = 16;

std::int64_t timeOfReply(const FtpReply& reply) {
  std::string time = parseTimeReply(reply).value_or("");
  while (time.ends_with(' ')) time.pop_back();
  return parseMdtmTime(time);
}

// The listed clock has perhaps no seconds. None when the times are not those of one moment in two zones: the
// file may have changed meanwhile.
std::optional<int> zoneBetween(std::int64_t listed, std::int64_t told) {
  const std::int64_t ahead = listed - told;
  if (told == 0 || ahead > kFarthestZone || ahead < -kFarthestZone) return std::nullopt;
  const std::int64_t quarters = (ahead + kFarthestZone + kQuarter - 1) / kQuarter;
  const std::int64_t zone = quarters * kQuarter - kFarthestZone;
  return zone - ahead < kMinute ? std::optional(static_cast<int>(zone)) : std::nullopt;
}

void makeDirectory(EntryFacts& entry) {
  entry.isDirectory = true;
  entry.attributes = (entry.attributes & ~kEntryNormal) | kEntryDirectory;
}

}  // namespace

void OpenRows::follow(FtpControl& control, const EntryList& entries) {
  if (const auto witness = witnessOfZone(control.knownTraits(), entries)) {
    control.follow("MDTM", witness->name);
  }
}

void OpenRows::settle(EntryList& entries) {
  Questions questions;
  if (const auto witness = witnessOfZone(control_.knownTraits(), entries)) askZone(*witness, questions);
  const Links links = linksOf(entries);
  askAll(links, std::move(questions));
  applyLinks(links, entries);
  applyZone(entries);
}

// --- The zone ---

// The newest file: the zone that its time was shown in is that of today, if any is.
std::optional<FtpEntry> OpenRows::witnessOfZone(const FtpTraits& traits, const EntryList& entries) {
  const bool maybeTold = traits.mdtm || !traits.featuresTold;
  if (traits.zone || !maybeTold || traits.zoneQuestions >= kMostZoneQuestions) return std::nullopt;
  std::optional<FtpEntry> newest;
  entries.forEach([&newest](const EntryFacts& facts, std::string_view name) {
    if (!facts.inServersZone || facts.isDirectory || facts.isLink) return;
    if (newest && facts.modified <= newest->modified) return;
    newest.emplace(FtpEntry{facts, std::string(name)});
  });
  return newest;
}

void OpenRows::askZone(const FtpEntry& witness, Questions& questions) {
  questions.push_back({"MDTM", witness.name, [this, listed = witness.modified](const FtpReply& reply) {
                         learnZone(listed, reply);
                       }});
}

void OpenRows::learnZone(std::int64_t listed, const FtpReply& reply) {
  const std::optional<int> zone = zoneBetween(listed, timeOfReply(reply));
  control_.learn([&](FtpTraits& traits) {
    traits.zone = zone;
    if (!zone) ++traits.zoneQuestions;
    if (reply.unsupported()) traits.zoneQuestions = kMostZoneQuestions;
  });
}

void OpenRows::applyZone(EntryList& entries) const {
  const std::optional<int>& zone = control_.knownTraits().zone;
  if (!zone) return;
  entries.changeEach([shift = *zone](EntryFacts& facts, std::string_view) {
    if (std::exchange(facts.inServersZone, false)) facts.modified -= shift;
  });
}

// --- The links ---

OpenRows::Links OpenRows::linksOf(const EntryList& entries) {
  Links links;
  std::size_t number = 0;
  bool more = true;
  entries.forEach([&](const EntryFacts& facts, std::string_view name) {
    const std::size_t entry = number++;
    if (!more || !facts.isLink) return;
    more = links.size() < kMostLinks && (!links.empty() || visit_.leave());
    std::string path = more ? pathOf(name) : std::string();
    if (!more || path.size() > kMaxArgument) return;
    links.push_back(std::make_shared<Link>(Link{.entry = entry, .path = std::move(path)}));
  });
  return links;
}

void OpenRows::applyLinks(const Links& links, EntryList& entries) {
  if (links.empty()) return;
  auto link = links.begin();
  std::size_t number = 0;
  entries.changeEach([&](EntryFacts& facts, std::string_view) {
    if (link == links.end() || number++ != (*link)->entry) return;
    facts.isLink = false;
    if ((*link)->isDirectory) {
      makeDirectory(facts);
    } else {
      facts.size = (*link)->size.value_or(0);
    }
    ++link;
  });
}

// An absolute one: on the way from link to link the server is somewhere else.
std::string OpenRows::pathOf(std::string_view name) const {
  std::string path;
  if (!directory_.starts_with('/')) path = control_.currentDirectory();
  if (!path.empty() && !directory_.empty() && !path.ends_with('/')) path += '/';
  path += directory_;
  if (!path.ends_with('/')) path += '/';
  return path.append(name);
}

void OpenRows::askLink(const std::shared_ptr<Link>& link, Questions& questions) const {
  if (!control_.knownTraits().noSize) {
    questions.push_back(
        {"SIZE", link->path, [link](const FtpReply& reply) { link->size = parseSizeReply(reply); }});
  }
  questions.push_back(
      {"CWD", link->path, [link](const FtpReply& reply) { link->isDirectory = reply.completed(); }});
}

void OpenRows::askAll(const Links& links, Questions questions) {
  for (std::size_t asked = 0; asked < links.size(); ++asked) {
    askLink(links[asked], questions);
    if ((asked + 1) % kLinksTogether != 0) continue;
    control_.askTogether(questions);
    questions.clear();
  }
  control_.askTogether(questions);
}

}  // namespace internet
