// SPDX-License-Identifier: MIT
// The commands that move a small file's content through memory, and the one for the web.
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>

#include "hosts/qxftp/Commands.h"
#include "hosts/qxftp/Listing.h"
#include "hosts/shared/Address.h"
#include "hosts/shared/Names.h"
#include "hosts/shared/Transfers.h"

namespace qxftp {
namespace {

[[noreturn]] void failToRead(const std::string& name) { fail("the local file " + name + " cannot be read"); }

// A folder can be opened, and not read.
std::string contentOf(std::istream& stream, const std::string& name) try {
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
} catch (const std::ios_base::failure&) {
  failToRead(name);
}

// "-" is the standard input. The library writes no empty file.
std::string localContent(const std::string& name) {
  std::ifstream file;
  if (name != "-") file.open(name, std::ios::binary);
  if (name != "-" && !file) failToRead(name);
  std::string content = contentOf(name == "-" ? std::cin : file, name);
  if (content.empty()) fail("the local file is empty; put can move such a one");
  return content;
}

std::span<const std::byte> bytesOf(const std::string& content) {
  return std::as_bytes(std::span<const char>(content));
}

void write(Context& context, const TwoWords& words) {
  context.each(std::vector<std::string>{words.second}, [&](const Place& place, Json& result) {
    const std::string content = localContent(words.first);
    leaving("a part of it may be on the server",
            [&] { need(context.client(place).write(place.path(), bytesOf(content))); });
    result["size"] = content.size();
  });
}

// The library answers "done" where the server has refused the upload of the whole.
void append(Context& context, const TwoWords& words) {
  context.each(std::vector<std::string>{words.second}, [&](const Place& place, Json& result) {
    const std::string content = localContent(words.first);
    const std::uint64_t size = wholeSize(context, place) + content.size();
    leaving("a part of the file may be all that is on the server", [&] {
      need(context.client(place).append(place.path(), bytesOf(content)));
      if (wholeSize(context, place) != size) fail("the server has not got the whole of it");
    });
    result["size"] = size;
  });
}

void writeTo(std::ostream& out, const qx::Bytes& content) {
  out.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
  if (!out.flush()) fail("the content cannot be written");
}

struct ReadOptions {
  std::vector<std::string> paths;
  std::string output;
};

void read(Context& context, const ReadOptions& options) {
  const std::string& output = options.output;
  if (context.settings().isJson && output.empty())
    throw WrongUsage("--json needs the standard output: name a file by --output");
  std::ofstream file;
  if (!output.empty()) file.open(output, std::ios::binary);
  context.each(options.paths, [&](const Place& place, Json& result) {
    if (!output.empty() && !file.is_open()) fail("the local file " + output + " cannot be written");
    const qx::Bytes content = need(context.client(place).read(place.path()));
    writeTo(output.empty() ? std::cout : file, content);
    result["size"] = content.size();
  });
}

qx::WebFile webFile(const std::string& text) {
  try {
    return hosts::parseWebAddress(text);
  } catch (const std::invalid_argument& problem) {
    throw WrongUsage(std::string("not an address: ") + problem.what());
  }
}

void fetch(Context& context, const TwoWords& words) {
  const qx::WebFile from = webFile(words.first);
  context.one(words.first, [&](Json& result) {
    need(hosts::fetch(context.anonymous(), from, hosts::nameFromServer(words.second)));
    result["to"] = words.second;
  });
}

using RunWithWords = void (*)(Context& context, const TwoWords& words);

void addWithFile(Commands& commands, const std::string& name, const std::string& text, RunWithWords run) {
  auto [command, words] =
      commands.add(name, text, "qxftp " + name + " note.txt ftp://me@ftp.example.org/pub/note.txt", run);
  takeWord(command, words.first, "LOCAL", "local file; \"-\" is the standard input");
  takeWord(command, words.second, "REMOTE", "file on a server");
}

void addRead(Commands& commands) {
  auto [command, options] = commands.add("read", "Writes the content of files to the standard output.",
                                         "qxftp read ftp://ftp.example.org/pub/readme.txt", read);
  command.alias("cat");
  takePaths(command, options.paths, "file on a server");
  command.add_option("-o,--output", options.output, "local file in place of the standard output")
      ->option_text("FILE");
}

void addFetch(Commands& commands) {
  auto [command, words] = commands.add(
      "http", "Gets a file from the web. A file that is there is replaced when the new one is whole.",
      "qxftp http https://www.example.org/ page.html", fetch);
  takeWord(command, words.first, "URL", "address that begins with http:// or https://");
  takeWord(command, words.second, "LOCAL", "local file");
}

}  // namespace

void addContentCommands(Commands& commands) {
  addRead(commands);
  addWithFile(commands, "write", "Makes a file of what a local one has, through memory.", write);
  addWithFile(commands, "append", "Puts what a local file has behind a file that is there.", append);
  addFetch(commands);
}

}  // namespace qxftp
