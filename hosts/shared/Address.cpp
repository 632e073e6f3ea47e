// SPDX-License-Identifier: MIT
#include "hosts/shared/Address.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <stdexcept>
#include <utility>

#include "hosts/shared/Ascii.h"
#include "hosts/shared/PercentCode.h"

namespace hosts {
namespace {

using Text = std::string_view;
constexpr Text kBetween = "://";
constexpr std::uint32_t kLastPort = 65535;
// What the library takes for host and user, and for a password.
constexpr std::size_t kLongestName = 255;
constexpr std::size_t kLongestPassword = 1023;

[[noreturn]] void fail(const std::string& why) { throw std::invalid_argument(why); }

// The part before the first `mark`, which is cut off `text` with it; all of it where there is no mark.
Text cutBefore(Text& text, char mark) {
  const Text part = text.substr(0, text.find(mark));
  text.remove_prefix(std::min(text.size(), part.size() + 1));
  return part;
}

// "ftp://" is cut off.
std::string cutScheme(Text& text, const std::string& without) {
  if (!isAddress(text)) return without;
  std::string scheme = lowered(text.substr(0, text.find(kBetween)));
  text.remove_prefix(scheme.size() + kBetween.size());
  return scheme;
}

std::pair<Text, Text> splitAtPath(Text text) {
  const std::size_t slash = std::min(text.find('/'), text.size());
  return {text.substr(0, slash), text.substr(slash)};
}

// The options behind the host or the path, each with its semicolon.
std::string cutOptions(Text& text) {
  static constexpr std::array<Text, 3> kKnown = {"fingerprint=", "verify=", "tls="};
  const std::size_t first = text.find(';');
  if (first == Text::npos) return {};
  std::string options(text.substr(first));
  text = text.substr(0, first);
  for (Text rest = Text(options).substr(1); !rest.empty();) {
    const std::string option = lowered(cutBefore(rest, ';'));
    if (!std::ranges::any_of(kKnown, [&](Text known) { return option.starts_with(known); })) {
      fail(R"(it has an unknown option behind a ";" (a semicolon in a path is "%3B"))");
    }
  }
  return options;
}

// "[::1]" with its brackets, or a name.
std::string cutHost(Text& text) {
  const std::size_t end = text.starts_with('[') ? text.find(']') : text.find(':');
  if (text.starts_with('[') && end == Text::npos) fail(R"(its "[" has no "]")");
  const std::size_t size = text.starts_with('[') ? end + 1 : end;
  std::string host = percentDecoded(text.substr(0, size));
  text.remove_prefix(std::min(text.size(), size));
  if (host.empty()) fail("it names no host");
  if (host.size() > kLongestName) fail("its host is too long");
  if (host.find_first_of(" @/\\") != std::string::npos) fail("its host is no name");
  return host;
}

std::optional<std::uint32_t> portBehind(Text text) {
  if (text.empty()) return {};
  if (!text.starts_with(':')) fail("behind its host is neither a port nor a path");
  return parsePort(text.substr(1));
}

void takeUser(qx::Login& login, Text text) {
  login.user = percentDecoded(cutBefore(text, ':'));
  login.password = percentDecoded(text);
  if (login.user.empty()) fail("it names no user before the \"@\"");
  if (login.user.size() > kLongestName) fail("its user is too long");
  if (login.password.size() > kLongestPassword) fail("its password is too long");
}

std::uint32_t usualPort(Text scheme) { return scheme == "ftps" ? 990 : 21; }

}  // namespace

bool isAddress(Text text) {
  const std::size_t end = text.find(kBetween);
  return end != Text::npos && end != 0 && std::ranges::all_of(text.substr(0, end), isLetter);
}

std::uint32_t parsePort(Text text) {
  std::uint32_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc() || end != text.data() + text.size() || port == 0 || port > kLastPort) {
    fail("a port is a number from 1 to 65535");
  }
  return port;
}

Address parseAddress(Text text) {
  const std::string scheme = cutScheme(text, "ftp");
  if (scheme != "ftp" && scheme != "ftpes" && scheme != "ftps")
    fail("it begins with none of ftp, ftpes and ftps");
  auto [server, path] = splitAtPath(text);
  const std::string options = cutOptions(server) + cutOptions(path);
  Address address;
  address.path = percentDecoded(path);
  if (const std::size_t at = server.rfind('@'); at != Text::npos) {
    takeUser(address.login, server.substr(0, at));
    server.remove_prefix(at + 1);
  }
  address.login.host = (scheme == "ftp" ? "" : scheme + "://") + cutHost(server) + options;
  address.login.port = portBehind(server).value_or(usualPort(scheme));
  return address;
}

std::string textOf(const Address& address) {
  Text server = address.login.host;
  const std::string scheme = cutScheme(server, "ftp");
  const std::string options = cutOptions(server);
  const auto& [login, path] = address;
  const std::string user = login.user.empty() ? "" : percentEncoded(login.user) + "@";
  const std::string port = login.port == usualPort(scheme) ? "" : ":" + std::to_string(login.port);
  const std::string slash = path.empty() || path.starts_with('/') ? "" : "/";
  return scheme + "://" + user + std::string(server) + port + slash + percentEncoded(path, "/") + options;
}

qx::WebFile parseWebAddress(Text text) {
  const std::string scheme = cutScheme(text, "");
  if (scheme != "http" && scheme != "https") fail("it begins with neither http:// nor https://");
  auto [server, object] = splitAtPath(text);
  const std::string options = cutOptions(server);
  qx::WebFile file;
  if (!object.empty()) file.object = object;
  file.server = (scheme == "https" ? "https://" : "") + cutHost(server) + options;
  file.port = portBehind(server).value_or(0);
  return file;
}

}  // namespace hosts
