// SPDX-License-Identifier: MIT
// The commands that change what is on a server.
#include <random>

#include "hosts/qxftp/Changes.h"
#include "hosts/qxftp/Commands.h"
#include "hosts/qxftp/Listing.h"
#include "hosts/qxftp/Wildcards.h"

namespace qxftp {
namespace {

using Paths = std::vector<std::string>;

// The library answers "done" where the server has refused the second half of a copy.
void checkCopy(Context& context, const Place& to, std::uint64_t size) {
  if (wholeSize(context, to) != size) fail("the server has not got the whole copy");
}

void copyOne(Context& context, const Place& from, const Place& to) {
  const std::uint64_t size = wholeSize(context, from);
  leaving("a part of it, or all, may be there as " + to.path(), [&] {
    need(context.client(from).copy(from.path(), to.path()));
    checkCopy(context, to, size);
  });
}

qx::Report stillThere(qx::Report report) {
  report.text = "it was copied, but it is still there, too: " + report.text;
  return report;
}

// A link can make one file of both paths, and the copy would go with the source: that gets another name
// first, and goes when the copy is there all the same.
void removeSource(Context& context, const Place& from, const std::string& aside, const Place& copy) {
  qx::Client& client = context.client(from);
  const auto size = context.connected(copy).size(copy.path());
  const auto renamed = client.rename(from.path(), aside);
  if (!renamed) throw Failure{stillThere(renamed.report())};
  const auto left = context.connected(copy).size(copy.path());
  const bool isOther = size && left && *size == *left;
  const auto removed = isOther ? client.remove(aside) : qx::Result<qx::Done>(std::nullopt, left.report());
  if (removed) return;
  rename(client, aside, from.path());
  if (isOther) throw Failure{removed.report()};
  context.refusal().forget();  // that was of a question
  fail("both paths lead to one file, which is where it was");
}

void moveOne(Context& context, const Place& from, const Place& to) {
  const std::uint64_t size = wholeSize(context, from);
  const std::string aside =
      joinedPath(splitPath(from.path()).folder, "qx-move-" + std::to_string(std::random_device()()) + ".tmp");
  leaving(
      "a part of it may be there as " + to.path() + ", or all, and then it may be gone here, or be " + aside,
      [&] {
        need(context.client(from).copy(from.path(), to.path()));
        checkCopy(context, to, size);
        removeSource(context, from, aside, to);
      });
}

using OneTransfer = void (*)(Context& context, const Place& from, const Place& to);

// The last word is the target: a directory where it ends in a slash, which it has to for several sources.
void transfer(Context& context, const Paths& words, OneTransfer one) {
  const std::vector<Place> sources = expanded(context, {words.begin(), words.end() - 1});
  const std::string& target = words.back();
  const bool isDirectory = target.ends_with('/');
  if (!isDirectory && sources.size() > 1) {
    throw WrongUsage("several files need a directory to go to, with a slash at its end");
  }
  std::vector<Place> targets;
  targets.reserve(sources.size());
  for (const Place& from : sources) {
    targets.push_back(context.placeBeside(from, isDirectory ? target + splitPath(from.path()).name : target));
  }
  std::size_t next = 0;
  context.each(sources, [&](const Place& from, Json& result) {
    const Place& to = targets[next++];
    one(context, from, to);
    result["to"] = to.text;
  });
}

void copy(Context& context, const Paths& words) { transfer(context, words, copyOne); }

void move(Context& context, const Paths& words) { transfer(context, words, moveOne); }

// A new name without a folder stays in the old one's.
void giveName(Context& context, const TwoWords& words) {
  const std::string& to = words.second;
  context.each(Paths{words.first}, [&](const Place& old, Json& result) {
    if (to.empty()) throw WrongUsage("the new name is empty");
    const bool isName = to.find_first_of("/\\") == std::string::npos;
    const Place renamed =
        context.placeBeside(old, isName ? joinedPath(splitPath(old.path()).folder, to) : to);
    rename(context.client(old), old.path(), renamed.path());
    result["to"] = renamed.text;
  });
}

void remove(Context& context, const Paths& paths) {
  context.each(expanded(context, paths),
               [&](const Place& place, Json&) { removeFile(context.client(place), place.path()); });
}

// To the library what is no directory counts as removed.
void removeDirectories(Context& context, const Paths& paths) {
  context.each(expanded(context, paths), [&](const Place& place, Json&) {
    if (!need(context.connected(place).directoryExists(place.path()))) fail("there is no such directory");
    removeDirectory(context.client(place), place.path());
  });
}

void makeDirectories(Context& context, const Paths& paths) {
  context.each(paths, [&](const Place& place, Json&) { makeDirectory(context.client(place), place.path()); });
}

void makeNew(Context& context, const TwoWords& words) {
  context.each(Paths{words.first}, [&](const Place& place, Json& result) {
    const std::string made = makeNewDirectory(context.connected(place), place.path(), words.second);
    context.say(made);
    result["made"] = made;
  });
}

void addTransfers(Commands& commands) {
  constexpr auto words =
      "files on one server, and where to: the last word, a directory where it ends in \"/\"";
  commands
      .addForPaths("copy", "Copies files on a server; their content goes through this machine.",
                   "qxftp copy ftp://me@ftp.example.org/pub/a.txt /pub/b.txt", copy, words)
      .get_option("PATH")
      ->expected(2, CLI::detail::expected_max_vector_size);
  commands
      .addForPaths("move", "Copies files on a server and removes what was copied.",
                   "qxftp move 'ftp://me@ftp.example.org/in/*.txt' /pub/", move, words)
      .get_option("PATH")
      ->expected(2, CLI::detail::expected_max_vector_size);
}

void addRename(Commands& commands) {
  auto [command, words] = commands.add("rename", "Gives a file or a directory another name or place.",
                                       "qxftp rename ftp://me@ftp.example.org/pub/old.txt new.txt", giveName);
  takeWord(command, words.first, "OLD", "file or directory on a server");
  takeWord(command, words.second, "NEW", "its new path; without a slash, its new name in the same directory");
}

void addMakeNew(Commands& commands) {
  auto [command, words] =
      commands.add("mknew", "Makes a directory under a name that is free: \"Name\", \"Name (1)\" and so on.",
                   "qxftp mknew ftp://me@ftp.example.org/pub Incoming", makeNew);
  takeWord(command, words.first, "PARENT", "directory on a server");
  takeWord(command, words.second, "NAME", "name to begin with");
}

}  // namespace

void addChangeCommands(Commands& commands) {
  addTransfers(commands);
  addRename(commands);
  commands.addForPaths("rm", "Removes files.", "qxftp rm 'ftp://me@ftp.example.org/pub/*.tmp'", remove,
                       "files on a server, perhaps by wildcards");
  commands.addForPaths("rmdir", "Removes empty directories.", "qxftp rmdir ftp://me@ftp.example.org/pub/old",
                       removeDirectories, "directory on a server");
  commands.addForPaths("mkdir", "Makes directories, and those above them that are missing.",
                       "qxftp mkdir ftp://me@ftp.example.org/pub/a/b/c", makeDirectories,
                       "directory on a server");
  addMakeNew(commands);
}

}  // namespace qxftp
