// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/OpenRows.h"

#include <algorithm>
#include <utility>

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

void makeDirectory(FtpEntry& entry) {
  entry.isDirectory = true;
  entry.attributes = (entry.attributes & ~kEntryNormal) | kEntryDirectory;
}

}  // namespace

void OpenRows::settle(std::vector<FtpEntry>& entries) {
  Questions questions;
  if (const FtpEntry* witness = witnessOfZone(entries)) askZone(*witness, questions);
  const Links links = linksOf(entries);
  askAll(links, std::move(questions));
  for (const std::shared_ptr<Link>& link : links) {
    FtpEntry& entry = entries[link->entry];
    entry.isLink = false;
    if (link->isDirectory) {
      makeDirectory(entry);
    } else {
      entry.size = link->size.value_or(0);
    }
  }
  applyZone(entries);
}

// --- The zone ---

// The newest file: the zone that its time was shown in is that of today, if any is.
const FtpEntry* OpenRows::witnessOfZone(const std::vector<FtpEntry>& entries) const {
  const FtpTraits& traits = control_.knownTraits();
  const bool maybeTold = traits.mdtm || !traits.featuresTold;
  if (traits.zone || !maybeTold || traits.zoneQuestions >= kMostZoneQuestions) return nullptr;
  const FtpEntry* newest = nullptr;
  for (const FtpEntry& entry : entries) {
    if (!entry.inServersZone || entry.isDirectory || entry.isLink) continue;
    if (!newest || entry.modified > newest->modified) newest = &entry;
  }
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

void OpenRows::applyZone(std::vector<FtpEntry>& entries) const {
  const std::optional<int>& zone = control_.knownTraits().zone;
  if (!zone) return;
  for (FtpEntry& entry : entries) {
    if (std::exchange(entry.inServersZone, false)) entry.modified -= *zone;
  }
}

// --- The links ---

OpenRows::Links OpenRows::linksOf(const std::vector<FtpEntry>& entries) {
  Links links;
  for (std::size_t i = 0; i < entries.size() && links.size() < kMostLinks; ++i) {
    if (!entries[i].isLink) continue;
    if (links.empty() && !visit_.leave()) break;
    std::string path = pathOf(entries[i].name);
    if (path.size() > kMaxArgument) continue;
    links.push_back(std::make_shared<Link>(Link{.entry = i, .path = std::move(path)}));
  }
  return links;
}

// An absolute one: on the way from link to link the server is somewhere else.
std::string OpenRows::pathOf(const std::string& name) const {
  std::string path;
  if (!directory_.starts_with('/')) path = control_.currentDirectory();
  if (!path.empty() && !directory_.empty() && !path.ends_with('/')) path += '/';
  path += directory_;
  if (!path.ends_with('/')) path += '/';
  return path + name;
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
