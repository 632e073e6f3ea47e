// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Wildcards.h"

#include <algorithm>
#include <optional>

#include "hosts/qxftp/Listing.h"
#include "hosts/shared/Interrupt.h"

namespace qxftp {
namespace {

using Text = std::string_view;

// Whether `c` is in the set behind "[", and what follows it; none: the bracket is a plain character.
struct SetMatch {
  bool matches = false;
  Text rest;
};

std::optional<SetMatch> matchSet(Text pattern, char c) {
  const bool isNegated = pattern.substr(1, 1) == "!" || pattern.substr(1, 1) == "^";
  const std::size_t first = isNegated ? 2 : 1;
  const std::size_t end = pattern.find(']', first + 1);  // one right behind the bracket is a member
  if (end == Text::npos) return {};
  bool isIn = false;
  for (std::size_t at = first; at < end; ++at) {
    const bool isRange = at + 2 < end && pattern[at + 1] == '-';
    const char last = isRange ? pattern[at + 2] : pattern[at];
    isIn = isIn || (pattern[at] <= c && c <= last);
    if (isRange) at += 2;
  }
  return SetMatch{isIn != isNegated, pattern.substr(end + 1)};
}

// One character by the pattern's first element; the pattern behind that, none where it does not match.
std::optional<Text> matchOne(Text pattern, char c) {
  if (pattern.empty()) return {};
  if (pattern[0] == '[') {
    if (const auto set = matchSet(pattern, c)) return set->matches ? std::optional(set->rest) : std::nullopt;
  }
  return pattern[0] == '?' || pattern[0] == c ? std::optional(pattern.substr(1)) : std::nullopt;
}

}  // namespace

bool hasWildcards(Text text) { return text.find_first_of("*?[") != Text::npos; }

// A star that was too short takes one more character, only ever the last star: that is never more work than
// the two lengths multiplied.
bool matchesWildcards(Text pattern, Text name) {
  std::optional<Text> behindStar;
  Text tried = name;
  for (;;) {
    if (!pattern.empty() && pattern[0] == '*') {
      behindStar = pattern = pattern.substr(1);
      tried = name;
      continue;
    }
    if (name.empty() && pattern.empty()) return true;
    const auto next = name.empty() ? std::nullopt : matchOne(pattern, name[0]);
    if (next) {
      pattern = *next;
      name.remove_prefix(1);
    } else if (behindStar && !tried.empty()) {
      tried.remove_prefix(1);
      name = tried;
      pattern = *behindStar;
    } else {
      return false;
    }
  }
}

SplitPath splitPath(Text path) {
  const std::size_t slash = path.find_last_of("/\\");
  if (slash == Text::npos) return {".", std::string(path)};
  return {std::string(path.substr(0, std::max<std::size_t>(slash, 1))), std::string(path.substr(slash + 1))};
}

std::string joinedPath(const std::string& folder, const std::string& name) {
  if (folder == ".") return name;
  return folder.ends_with('/') ? folder + name : folder + "/" + name;
}

std::vector<QXDirEntry> matchingEntries(Context& context, const Place& place) {
  const SplitPath path = splitPath(place.path());
  if (hasWildcards(path.folder)) fail("only the last part of a path may have wildcards (or --literal)");
  auto entries = entriesOf(context, Context::at(place, path.folder)).value_or(std::vector<QXDirEntry>());
  std::erase_if(entries, [&](const QXDirEntry& entry) { return !matchesWildcards(path.name, entry.szName); });
  if (entries.empty()) fail("nothing has such a name");
  return entries;
}

std::vector<Place> expanded(Context& context, const std::vector<std::string>& paths) {
  std::vector<Place> all;
  for (const Place& place : context.places(paths)) {
    if (!context.isPattern(place) || hosts::isInterrupted()) {
      all.push_back(place);
      continue;
    }
    context.attempt(place, [&] {
      const std::string folder = splitPath(place.path()).folder;
      for (const QXDirEntry& entry : matchingEntries(context, place)) {
        all.push_back(Context::at(place, joinedPath(folder, entry.szName)));
      }
    });
  }
  return all;
}

}  // namespace qxftp
