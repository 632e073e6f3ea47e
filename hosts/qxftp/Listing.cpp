// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Listing.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "hosts/qxftp/Wildcards.h"
#include "hosts/shared/Entries.h"

namespace qxftp {

std::optional<std::vector<QXDirEntry>> entriesOf(Context& context, const Place& directory) {
  qx::Client& client = context.connected(directory);
  auto entries = need(client.list(directory.path()));
  if (entries.empty() && !need(client.directoryExists(directory.path()))) return {};
  hosts::sortByName(entries);
  return entries;
}

std::optional<QXDirEntry> entryOf(Context& context, const Place& place) {
  const auto [folder, name] = splitPath(place.path());
  const auto entries = entriesOf(context, Context::at(place, folder)).value_or(std::vector<QXDirEntry>());
  const auto found = std::ranges::find(entries, name, [](const QXDirEntry& entry) { return entry.szName; });
  return found != entries.end() ? std::optional(*found) : std::nullopt;
}

std::uint64_t wholeSize(Context& context, const Place& place) {
  const auto entry = entryOf(context, place);
  if (entry && entry->bIsDirectory != 0) fail(place.path() + " is a directory");
  const std::uint32_t size = need(context.connected(place).size(place.path()));
  const std::uint64_t listed = entry ? hosts::sizeOf(*entry) : size;
  return static_cast<std::uint32_t>(listed) == size ? listed : size;
}

std::string timeText(const QXFileTime& time) {
  using namespace std::chrono;
  const std::uint64_t units = hosts::unitsOf(time);
  if (units == 0) return {};
  const sys_seconds when = sys_days{year{1601} / 1 / 1} + seconds{units / 10'000'000};
  const auto day = floor<days>(when);
  const year_month_day date{day};
  const hh_mm_ss clock{when - day};
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text;
}

std::string shortLine(const QXDirEntry& entry) {
  return std::string(entry.szName) + (entry.bIsDirectory != 0 ? "/" : "");
}

std::string longLine(const QXDirEntry& entry) {
  const bool isDirectory = entry.bIsDirectory != 0;
  const std::string size = isDirectory ? "-" : std::to_string(hosts::sizeOf(entry));
  char columns[64];
  std::snprintf(columns, sizeof columns, "%c %14s  %-19s  ", isDirectory ? 'd' : '-', size.c_str(),
                timeText(entry.ftLastWriteTime).c_str());
  return columns + shortLine(entry);
}

Json jsonOf(const QXDirEntry& entry, const Place& place) {
  Json json = {{"name", entry.szName}, {"directory", entry.bIsDirectory != 0}};
  if (entry.bIsDirectory == 0) json["size"] = hosts::sizeOf(entry);
  const std::string time = timeText(entry.ftLastWriteTime);
  json["time"] = time.empty() ? Json() : Json(time);
  if (place.path().starts_with('/')) json["url"] = hosts::textOf(place.address);
  return json;
}

}  // namespace qxftp
