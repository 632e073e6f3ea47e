// SPDX-License-Identifier: MIT
// The commands that change nothing.
#include <memory>

#include "hosts/qxftp/Commands.h"
#include "hosts/qxftp/Listing.h"
#include "hosts/qxftp/Wildcards.h"

namespace qxftp {
namespace {

struct ListOptions {
  std::vector<std::string> paths;
  bool hasNamesAlone = false;
};

struct Listed {
  std::string folder;
  std::vector<QXDirEntry> entries;
};

Listed listed(Context& context, const Place& place) {
  const std::string above = splitPath(place.path()).folder;
  if (context.isPattern(place)) return {above, matchingEntries(context, place)};
  if (const auto entries = entriesOf(context, place)) return {place.path(), *entries};
  return {above, {entryOf(context, place)}};
}

void list(Context& context, const ListOptions& options) {
  context.each(options.paths, [&](const Place& place, Json& result) {
    const auto [folder, entries] = listed(context, place);
    result["entries"] = Json::array();
    for (const QXDirEntry& entry : entries) {
      context.say(options.hasNamesAlone ? shortLine(entry) : longLine(entry));
      result["entries"].push_back(jsonOf(entry, Context::at(place, joinedPath(folder, entry.szName))));
    }
  });
}

void addList(Commands& commands) {
  const auto options = std::make_shared<ListOptions>();
  CLI::App& ls = commands.add("ls", "Lists directories, or what in a directory has names of a pattern.",
                              "qxftp ls ftp://ftp.example.org/pub '/pub/*.txt'",
                              [options](Context& context) { list(context, *options); });
  ls.add_option("path", options->paths, "directory, or files by wildcards")->required();
  ls.add_flag("-1,--names", options->hasNamesAlone, "names alone, one in a line");
}

}  // namespace

void addLookCommands(Commands& commands) { addList(commands); }

}  // namespace qxftp
