// SPDX-License-Identifier: MIT
#include "framework/platform/proxy_environment.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "framework/platform/proxy_text.h"
#include "framework/platform/resolver.h"
#include "framework/text/AsciiText.h"

namespace platform {

namespace {

std::string upperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return text;
}

std::string_view inEitherCase(const Environment& environment, const std::string& name) {
  const std::string_view value = environment(name.c_str());
  return value.empty() ? environment(upperCase(name).c_str()) : value;
}

std::string_view namedProxy(const Environment& environment, const std::string& scheme) {
  const std::string name = scheme + "_proxy";
  const std::string_view own = scheme == "http" ? environment(name.c_str()) : inEitherCase(environment, name);
  return own.empty() ? inEitherCase(environment, "all_proxy") : own;
}

std::optional<SocketAddress> addressOf(std::string_view text) {
  if (text.starts_with('[') && text.ends_with(']')) text = text.substr(1, text.size() - 2);
  if (text.empty()) return std::nullopt;
  const auto addresses = numericAddresses(std::string(text), 0);
  return addresses.empty() ? std::nullopt : std::optional(addresses.front());
}

bool sameBits(const SocketAddress& a, const SocketAddress& b, unsigned bits) noexcept {
  if (a.v6 != b.v6 || bits > (a.v6 ? 128u : 32u)) return false;
  const std::size_t whole = bits / 8;
  if (!std::equal(a.host.begin(), a.host.begin() + static_cast<std::ptrdiff_t>(whole), b.host.begin())) {
    return false;
  }
  const unsigned left = bits % 8;
  return left == 0 || (a.host[whole] ^ b.host[whole]) >> (8 - left) == 0;
}

// `entry` is an address, or one with the number of bits that count.
bool coversAddress(std::string_view entry, const SocketAddress& host) {
  const std::size_t slash = std::min(entry.find('/'), entry.size());
  const auto address = addressOf(entry.substr(0, slash));
  if (!address) return false;
  unsigned bits = address->v6 ? 128 : 32;
  if (slash < entry.size() && !ascii::readNumber(entry.substr(slash + 1), bits)) return false;
  return sameBits(*address, host, bits);
}

// `entry` is the name or one above it.
bool coversName(std::string_view entry, std::string_view host) noexcept {
  if (entry.ends_with('.')) entry.remove_suffix(1);
  if (entry.starts_with('.')) entry.remove_prefix(1);
  if (host.ends_with('.')) host.remove_suffix(1);
  if (entry.empty() || entry.size() > host.size()) return false;
  const std::size_t front = host.size() - entry.size();
  return ascii::equalBlindToCase(host.substr(front), entry) && (front == 0 || host[front - 1] == '.');
}

bool isExcepted(std::string_view list, const std::string& host) {
  constexpr std::string_view kBetween = ", \t";
  if (list == "*") return true;
  const auto address = addressOf(host);
  while (!list.empty()) {
    const std::size_t end = std::min(list.find_first_of(kBetween), list.size());
    const std::string_view entry = list.substr(0, end);
    if (address ? coversAddress(entry, *address) : coversName(entry, host)) return true;
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return false;
}

}  // namespace

std::vector<Proxy> proxiesFrom(const Environment& environment, const ProxyTarget& target) {
  const std::string_view named = namedProxy(environment, target.scheme);
  if (named.empty() || isExcepted(inEitherCase(environment, "no_proxy"), target.host)) return {};
  return {parseProxy(named)};
}

}  // namespace platform
