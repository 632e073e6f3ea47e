// SPDX-License-Identifier: MIT
// The commands that change nothing.
#include "hosts/qxftp/Commands.h"
#include "hosts/qxftp/Listing.h"
#include "hosts/qxftp/Wildcards.h"

namespace qxftp {
namespace {

using Paths = std::vector<std::string>;

struct Listed {
  std::string folder;
  std::vector<QXDirEntry> entries;
};

// A file is listed as the one of its name in its folder.
Listed listed(Context& context, const Place& place) {
  const std::string above = splitPath(place.path()).folder;
  if (context.isPattern(place)) return {above, matchingEntries(context, place)};
  if (const auto entries = entriesOf(context, place)) return {place.path(), *entries};
  const auto entry = entryOf(context, place);
  if (!entry) fail("there is no such file or directory");
  return {above, {*entry}};
}

struct ListOptions {
  Paths paths;
  bool namesAlone = false;
};

void list(Context& context, const ListOptions& options) {
  context.each(options.paths, [&](const Place& place, Json& result) {
    const auto [folder, entries] = listed(context, place);
    result["entries"] = Json::array();
    for (const QXDirEntry& entry : entries) {
      context.say(options.namesAlone ? shortLine(entry) : longLine(entry));
      result["entries"].push_back(jsonOf(entry, Context::at(place, joinedPath(folder, entry.szName))));
    }
  });
}

void connect(Context& context, const Paths& addresses) {
  context.each(addresses.empty() ? Paths{"/"} : addresses, [&](const Place& place, Json&) {
    static_cast<void>(context.connected(place));
    context.say("connected to " + place.text);
  });
}

void answer(Context& context, Json& result, const Place& place, const char* what) {
  context.say(place.text + (what != nullptr ? std::string(" is a ") + what : " is not there"));
  result["is"] = what != nullptr ? Json(what) : Json();
  if (what == nullptr) context.sayNo();
}

void tellWhetherThere(Context& context, const Paths& paths) {
  context.each(paths, [&](const Place& place, Json& result) {
    qx::Client& client = context.connected(place);
    const bool isFile = need(client.fileExists(place.path()));
    const bool isDirectory = !isFile && need(client.directoryExists(place.path()));
    answer(context, result, place, isFile ? "file" : isDirectory ? "directory" : nullptr);
  });
}

void tellWhetherDirectory(Context& context, const Paths& paths) {
  context.each(paths, [&](const Place& place, Json& result) {
    const bool is = need(context.connected(place).directoryExists(place.path()));
    context.say(place.text + (is ? " is a directory" : " is no directory"));
    result["directory"] = is;
    if (!is) context.sayNo();
  });
}

void tellSizes(Context& context, const Paths& paths) {
  context.each(paths, [&](const Place& place, Json& result) {
    const std::uint64_t size = wholeSize(context, place);
    context.say(std::to_string(size));
    result["size"] = size;
  });
}

// A directory that is not there has no items, to the library.
void count(Context& context, const Paths& paths) {
  context.each(paths, [&](const Place& place, Json& result) {
    qx::Client& client = context.connected(place);
    const qx::ItemCounts counts = need(client.count(place.path()));
    const bool isEmpty = counts.files == 0 && counts.directories == 0;
    if (isEmpty && !need(client.directoryExists(place.path()))) fail("there is no such directory");
    context.say(std::to_string(counts.files) + " files, " + std::to_string(counts.directories) +
                " directories");
    result["files"] = counts.files;
    result["directories"] = counts.directories;
  });
}

void addList(Commands& commands) {
  auto [ls, options] =
      commands.add("ls", "Lists directories, files, or what has names of a pattern.",
                   "qxftp ls ftp://ftp.example.org/pub 'ftp://ftp.example.org/pub/*.txt'", list);
  takePaths(ls, options.paths, "directory, or files, perhaps by wildcards");
  ls.add_flag("-1,--names", options.namesAlone,
              "names alone, one in a line, those of directories with a slash");
}

}  // namespace

void addLookCommands(Commands& commands) {
  commands
      .addForPaths("connect", "Logs in, and out again.", "qxftp connect ftpes://me@ftp.example.org", connect,
                   "address of a server, where --host names none")
      .get_option("PATH")
      ->required(false);
  addList(commands);
  commands.addForPaths("exists", "Tells whether something is there, and what it is.",
                       "qxftp exists ftp://ftp.example.org/pub/readme.txt", tellWhetherThere,
                       "path on a server");
  commands.addForPaths("isdir", "Tells whether something is a directory.",
                       "qxftp isdir ftp://ftp.example.org/pub", tellWhetherDirectory, "path on a server");
  commands.addForPaths("size", "Tells how many bytes files have.",
                       "qxftp size ftp://ftp.example.org/pub/readme.txt", tellSizes, "file on a server");
  commands.addForPaths("count", "Counts what is in directories.", "qxftp count ftp://ftp.example.org/pub",
                       count, "directory on a server");
}

}  // namespace qxftp
