// SPDX-License-Identifier: MIT
#include "framework/platform/proxy_list.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "framework/platform/proxy_text.h"
#include "framework/platform/resolver.h"
#include "framework/text/AsciiText.h"

namespace platform {

namespace {

constexpr std::uint16_t kHttpPort = 80;
constexpr std::string_view kLocalNames = "<local>";
constexpr std::string_view kNoLoopback = "<-loopback>";

std::vector<std::string_view> entriesOf(std::string_view list) {
  constexpr std::string_view kBetween = "; \t\r\n";
  std::vector<std::string_view> entries;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find_first_of(kBetween), list.size());
    if (end > 0) entries.push_back(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return entries;
}

// `entry` without `front`, and "" where it begins with something else.
std::string_view behind(std::string_view front, std::string_view entry) noexcept {
  return ascii::startsBlindToCase(entry, front) ? entry.substr(front.size()) : std::string_view();
}

Proxy proxyOf(std::string_view text, Proxy::Kind usual) {
  // These settings name the protocol that goes through, and the proxies of their time encrypt nothing.
  if (const auto place = behind("https://", text); !place.empty()) text = place;
  const bool socks = usual == Proxy::Kind::socks || ascii::startsBlindToCase(text, "socks");
  return parseProxy(text, usual, socks ? kUsualProxyPort : kHttpPort);
}

// '*' for any number of characters.
bool matches(std::string_view pattern, std::string_view text) noexcept {
  std::size_t at = 0, inPattern = 0, star = std::string_view::npos, afterStar = 0;
  while (at < text.size()) {
    if (inPattern < pattern.size() && pattern[inPattern] == '*') {
      star = inPattern++;
      afterStar = at;
    } else if (inPattern < pattern.size() &&
               ascii::lowerCase(pattern[inPattern]) == ascii::lowerCase(text[at])) {
      ++inPattern;
      ++at;
    } else if (star != std::string_view::npos) {
      inPattern = star + 1;
      at = ++afterStar;
    } else {
      return false;
    }
  }
  return pattern.substr(inPattern).find_first_not_of('*') == std::string_view::npos;
}

// The host's pattern and, where one is there, the port behind it, which must be the target's.
bool coversPlace(std::string_view entry, const ProxyTarget& target) noexcept {
  const bool bracket = entry.starts_with('[');
  const std::size_t colon = entry.find(':', bracket ? std::min(entry.find(']'), entry.size()) : 0);
  const bool hasPort = colon != std::string_view::npos && colon == entry.rfind(':');
  std::uint16_t port = target.port;
  if (hasPort && !ascii::readNumber(entry.substr(colon + 1), port)) return false;
  std::string_view host = hasPort ? entry.substr(0, colon) : entry;
  if (bracket && host.ends_with(']')) host = host.substr(1, host.size() - 2);
  return port == target.port && matches(host, target.host);
}

bool covers(std::string_view entry, const ProxyTarget& target) noexcept {
  if (ascii::equalBlindToCase(entry, kLocalNames))
    return target.host.find_first_of(".:") == std::string::npos;
  const std::size_t mark = entry.find("://");
  if (mark == std::string_view::npos) return coversPlace(entry, target);
  return ascii::equalBlindToCase(entry.substr(0, mark), target.scheme) &&
         coversPlace(entry.substr(mark + 3), target);
}

}  // namespace

std::vector<Proxy> proxiesOfList(std::string_view list, const ProxyTarget& target) {
  std::array<std::vector<Proxy>, 3> found;  // own, for all, socks
  const std::string own = target.scheme + "=";
  for (const std::string_view entry : entriesOf(list)) {
    if (const auto text = behind(own, entry); !text.empty()) {
      found[0].push_back(proxyOf(text, Proxy::Kind::http));
    } else if (const auto socks = behind("socks=", entry); !socks.empty()) {
      found[2].push_back(proxyOf(socks, Proxy::Kind::socks));
    } else if (entry.find('=') == std::string_view::npos) {
      found[1].push_back(proxyOf(entry, Proxy::Kind::http));
    }
  }
  const auto first = std::find_if(found.begin(), found.end(), [](const auto& each) { return !each.empty(); });
  return first == found.end() ? std::vector<Proxy>() : *first;
}

bool isExcepted(std::string_view list, const ProxyTarget& target) {
  const auto entries = entriesOf(list);
  return std::any_of(entries.begin(), entries.end(),
                     [&target](std::string_view entry) { return covers(entry, target); });
}

bool isOwnMachine(const std::string& host) {
  std::string_view name = host;
  if (name.ends_with('.')) name.remove_suffix(1);
  if (matches("localhost", name) || matches("*.localhost", name) || matches("loopback", name)) return true;
  const auto addresses = numericAddresses(host, 0);
  if (addresses.empty()) return false;
  const auto& bytes = addresses.front().host;
  if (!addresses.front().v6) return bytes[0] == 127;
  const bool zeros = std::all_of(bytes.begin(), bytes.begin() + 15, [](auto byte) { return byte == 0; });
  return zeros && bytes[15] == 1;
}

bool includesOwnMachine(std::string_view exceptions) noexcept {
  return ascii::containsBlindToCase(exceptions, kNoLoopback);
}

}  // namespace platform
