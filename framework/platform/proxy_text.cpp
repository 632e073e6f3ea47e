// SPDX-License-Identifier: MIT
#include "framework/platform/proxy_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <utility>

#include "framework/text/AsciiText.h"

namespace platform {

namespace {

struct Scheme {
  std::string_view name;
  Proxy::Kind kind;
};

constexpr std::array kSchemes{
    Scheme{"http", Proxy::Kind::http},
    Scheme{"socks", Proxy::Kind::socks},
    Scheme{"socks5", Proxy::Kind::socks},
    Scheme{"socks5h", Proxy::Kind::socks},
};

Proxy::Kind kindOf(std::string_view scheme) noexcept {
  const auto* const known = std::find_if(kSchemes.begin(), kSchemes.end(), [&](const Scheme& candidate) {
    return ascii::equalBlindToCase(candidate.name, scheme);
  });
  return known == kSchemes.end() ? Proxy::Kind::unsupported : known->kind;
}

// What stands in front of `mark`, which goes with it; none where there is no such mark.
std::optional<std::string_view> takeUpTo(std::string_view mark, std::size_t at, std::string_view& rest) {
  if (at == std::string_view::npos) return std::nullopt;
  const std::string_view front = rest.substr(0, at);
  rest.remove_prefix(at + mark.size());
  return front;
}

// "%41" stands for 'A'; a '%' without two digits behind it for itself. Secret, for a password is one.
secret::Text decoded(std::string_view text) {
  secret::Text result;
  while (!text.empty()) {
    unsigned char byte = 0;
    const std::string_view digits = text.front() == '%' ? text.substr(1, 2) : std::string_view();
    const char* const end = digits.data() + digits.size();
    const bool coded = digits.size() == 2 && std::from_chars(digits.data(), end, byte, 16).ptr == end;
    const char c = coded ? static_cast<char>(byte) : text.front();
    result.append({&c, 1});
    text.remove_prefix(coded ? 3 : 1);
  }
  return result;
}

bool readable(std::string_view part) noexcept {
  return std::none_of(part.begin(), part.end(), ascii::isControl);
}

bool isHost(std::string_view host) noexcept {
  return !host.empty() && readable(host) && host.find_first_of(" []") == std::string_view::npos;
}

// Where the port's colon is: behind the bracket of an address, and none in an address without brackets.
std::size_t portMark(std::string_view place) noexcept {
  const std::size_t bracket = place.starts_with('[') ? place.find(']') : 0;
  const std::size_t colon = place.find(':', std::min(bracket, place.size()));
  return colon == place.rfind(':') ? colon : std::string_view::npos;
}

// All of `digits`; the port stays where there are none.
bool readPort(std::string_view digits, std::uint16_t& port) noexcept {
  return digits.empty() || (ascii::readNumber(digits, port) && port != 0);
}

// "host:port", "[address]:port". False when it is none.
bool readPlace(std::string_view place, Proxy& proxy) {
  const std::size_t mark = std::min(portMark(place), place.size());
  std::string_view host = place.substr(0, mark);
  if (!readPort(place.substr(std::min(mark + 1, place.size())), proxy.port)) return false;
  if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
  proxy.host = decoded(host).view();
  return isHost(proxy.host);
}

bool readLogin(std::string_view login, Proxy& proxy) {
  const std::size_t colon = std::min(login.find(':'), login.size());
  proxy.user = decoded(login.substr(0, colon)).view();
  proxy.password = decoded(login.substr(std::min(colon + 1, login.size())));
  return readable(proxy.user) && readable(proxy.password.view());
}

}  // namespace

Proxy parseProxy(std::string_view text, Proxy::Kind usual, std::uint16_t usualPort) {
  std::string_view rest = text;
  const auto scheme = takeUpTo("://", rest.find("://"), rest);
  // Up to the last one: a password that was written down as it is may hold anything, and must not be shown.
  const auto login = takeUpTo("@", rest.rfind('@'), rest);
  const std::string_view place = rest.substr(0, rest.find_first_of("/?#"));

  Proxy proxy;
  proxy.port = usualPort;
  const bool whole = readPlace(place, proxy) && (!login || readLogin(*login, proxy));
  const Proxy::Kind kind = scheme ? kindOf(*scheme) : usual;
  if (!whole || kind == Proxy::Kind::unsupported) proxy = {};
  proxy.kind = whole ? kind : Proxy::Kind::unsupported;
  proxy.text = (scheme ? std::string(*scheme) + "://" : "").append(place);
  return proxy;
}

}  // namespace platform
