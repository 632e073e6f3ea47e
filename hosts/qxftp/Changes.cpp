// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Changes.h"

#include "hosts/qxftp/Outcome.h"
#include "hosts/shared/Names.h"
#include "hosts/shared/Trees.h"

namespace qxftp {
namespace {

constexpr auto kPerhapsMade = "it may have been made, or a part of the path to it";
constexpr auto kPerhapsGone = "it may be gone";

}  // namespace

void makeDirectory(qx::Client& client, const std::string& path) {
  leaving(kPerhapsMade, [&] { need(client.createDirectory(path)); });
}

void removeFile(qx::Client& client, const std::string& path) {
  leaving(kPerhapsGone, [&] { need(client.remove(path)); });
}

void removeDirectory(qx::Client& client, const std::string& path) {
  leaving(kPerhapsGone, [&] { need(client.removeDirectory(path)); });
}

bool removeLink(qx::Client& client, hosts::ListingWatch& watch, const std::string& path) {
  bool wasLink = false;
  leaving(kPerhapsGone, [&] { wasLink = need(hosts::removeIfLink(client, watch, path)); });
  return wasLink;
}

void rename(qx::Client& client, const std::string& from, const std::string& to) {
  leaving("it may be there as " + to, [&] { need(client.rename(from, to)); });
}

// The library's own search tries a name that the server refuses for ever.
std::string makeNewDirectory(qx::Client& client, const std::string& parent, const std::string& name) {
  if (const auto reason = hosts::whyNotRemote(name)) fail(*reason);
  if (!need(client.directoryExists(parent))) fail("there is no such directory");
  constexpr int kNames = 1000;
  for (int number = 0; number < kNames; ++number) {
    const std::string suffix = number == 0 ? "" : " (" + std::to_string(number) + ")";
    std::string path = hosts::joined(parent, name + suffix);
    if (need(client.directoryExists(path)) || need(client.fileExists(path))) continue;
    leaving("one may have been made", [&] { need(client.createDirectory(path)); });
    return path;
  }
  fail("all names up to (" + std::to_string(kNames - 1) + ") are taken");
}

}  // namespace qxftp
