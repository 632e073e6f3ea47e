// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Changes.h"

#include "hosts/qxftp/Outcome.h"
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

std::string makeNewDirectory(qx::Client& client, const std::string& parent, const std::string& name) {
  std::string made;
  leaving("one may have been made", [&] { made = need(client.createNewDirectory(parent, name)); });
  return made;
}

}  // namespace qxftp
