// SPDX-License-Identifier: MIT
#include "hosts/shared/Passwords.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>

#include "hosts/shared/Netrc.h"
#include "hosts/shared/PrivateFile.h"
#include "hosts/shared/Terminal.h"

namespace hosts {
namespace {

using Path = std::filesystem::path;

bool isAnonymous(const std::string& user) { return user == "anonymous" || user == "ftp"; }

// "ftpes://[::1];verify=no" -> "::1"
std::string bareHost(std::string host) {
  if (const std::size_t scheme = host.find("://"); scheme != std::string::npos) host.erase(0, scheme + 3);
  host.resize(std::min(host.find(';'), host.size()));
  return host.starts_with('[') ? host.substr(1, host.size() - 2) : host;
}

void requirePrivate(const Path& file) {
  if (isPrivate(file)) return;
  throw NoPassword(file.string() + " has a password, and others may read it: " + howToMakePrivate(file));
}

std::string firstLine(std::istream& stream, const std::string& name) {
  std::string line;
  if (!std::getline(stream, line)) throw NoPassword("there is no password in " + name);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

std::optional<std::string> fromFile(const std::string& name) {
  if (name.empty()) return {};
  if (name == "-") return firstLine(std::cin, "the standard input");
  std::ifstream file(name);
  if (!file) throw NoPassword("the password file " + name + " cannot be read");
  requirePrivate(name);
  return firstLine(file, name);
}

std::optional<std::string> fromEnvironment(const char* variable) {
  const char* const value = variable != nullptr ? std::getenv(variable) : nullptr;
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<NetrcLogin> fromNetrc(const PasswordSources& sources, const qx::Login& login) {
  if (!sources.usesNetrc) return {};
  const Path path = sources.netrc.empty() ? usualNetrc() : sources.netrc;
  std::ifstream file(path);
  const bool isFile = file && !std::filesystem::is_directory(path);
  if (!isFile && !sources.netrc.empty())
    throw NoPassword("the netrc file " + path.string() + " cannot be read");
  if (!isFile) return {};
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  auto found = findInNetrc(text, bareHost(login.host), login.user);
  if (found && !found->password.empty() && !isAnonymous(found->user)) requirePrivate(path);
  return found;
}

std::string asked(const qx::Login& login, bool mayAsk) {
  const std::string who = login.user + " at " + bareHost(login.host);
  auto answer = mayAsk ? ask("Password of " + who + ": ", Echo::off) : std::nullopt;
  if (!answer) throw NoPassword("there is no password of " + who + ", and no terminal to ask for it");
  return *answer;
}

std::string passwordOf(const qx::Login& login, const PasswordSources& sources) {
  if (auto password = fromFile(sources.file)) return *password;
  if (auto password = fromEnvironment(sources.variable)) return *password;
  if (const auto found = fromNetrc(sources, login); found && !found->password.empty()) return found->password;
  return asked(login, sources.asks);
}

void takeUserOfNetrc(qx::Login& login, const PasswordSources& sources) {
  if (const auto found = fromNetrc(sources, login)) {
    login.user = found->user;
    login.password = found->password;
  }
}

}  // namespace

void completeLogin(qx::Login& login, const PasswordSources& sources) {
  if (login.user.empty()) takeUserOfNetrc(login, sources);
  const qx::Login anonymous;
  if (login.user.empty()) login.user = anonymous.user;
  if (!login.password.empty()) return;
  login.password = isAnonymous(login.user) ? anonymous.password : passwordOf(login, sources);
}

}  // namespace hosts
