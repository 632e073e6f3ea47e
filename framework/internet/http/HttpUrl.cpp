// SPDX-License-Identifier: MIT
#include "framework/internet/http/HttpUrl.h"

#include <algorithm>
#include <array>
#include <optional>

#include "framework/text/AsciiText.h"

namespace internet {

namespace {

struct Scheme {
  std::string_view prefix;
  UrlService service;
  std::uint16_t port;
};

constexpr std::array kSchemes{Scheme{"ftp://", UrlService::ftp, 21},
                              Scheme{"http://", UrlService::http, kDefaultHttpPort},
                              Scheme{"https://", UrlService::https, kDefaultHttpsPort}};

std::string_view withoutBlankEnds(std::string_view text) noexcept {
  const auto blank = [](char c) { return static_cast<unsigned char>(c) <= 0x20; };
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  return text;
}

struct Authority {
  std::string_view server;
  std::uint16_t port;
};

// "[user@]server[:port]"; a numeric address of IPv6 stands in brackets.
std::optional<Authority> splitAuthority(std::string_view text, std::uint16_t defaultPort) noexcept {
  if (const auto at = text.rfind('@'); at != std::string_view::npos) text.remove_prefix(at + 1);
  const bool bracketed = text.starts_with('[');
  const auto end = bracketed ? text.find(']') : std::min(text.find(':'), text.size());
  if (end == std::string_view::npos) return std::nullopt;
  Authority result{text.substr(0, end), defaultPort};
  std::string_view rest = text.substr(end);
  if (bracketed) {
    result.server.remove_prefix(1);
    rest.remove_prefix(1);
  }
  if (result.server.empty() || (!rest.empty() && rest.front() != ':')) return std::nullopt;
  if (rest.size() > 1 && (!ascii::readNumber(rest.substr(1), result.port) || result.port == 0))
    return std::nullopt;
  return result;
}

}  // namespace

std::string requestTarget(std::string_view object) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string target;
  if (!object.starts_with('/')) target += '/';
  for (const char c : object) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == ' ' || c == '#' || byte > 0x7f) {
      target.append(1, '%').append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
    } else {
      target += c;
    }
  }
  return target;
}

bool isSendable(std::string_view target) noexcept {
  return std::none_of(target.begin(), target.end(), ascii::isControl);
}

bool isHostName(std::string_view server) noexcept {
  return !server.empty() && isSendable(server) && server.find_first_of(" /\\?#@[]") == std::string_view::npos;
}

std::string hostField(std::string_view server, std::uint16_t port, std::uint16_t usual) {
  std::string field(server);
  // The zone of an address is this machine's own affair.
  if (server.find(':') != std::string_view::npos) field = '[' + field.substr(0, field.find('%')) + ']';
  if (port != usual) field += ':' + std::to_string(port);
  return field;
}

}  // namespace internet

bool AfxParseURL(std::string_view url, internet::UrlService& service, std::string& server,
                 std::string& object, std::uint16_t& port) {
  url = internet::withoutBlankEnds(url);
  const auto scheme =
      std::find_if(internet::kSchemes.begin(), internet::kSchemes.end(),
                   [url](const auto& known) { return ascii::startsBlindToCase(url, known.prefix); });
  if (scheme == internet::kSchemes.end()) return false;
  url.remove_prefix(scheme->prefix.size());
  url = url.substr(0, url.find('#'));
  const std::string_view authority = url.substr(0, url.find_first_of("/?"));
  const auto parts = internet::splitAuthority(authority, scheme->port);
  if (!parts) return false;
  service = scheme->service;
  server = parts->server;
  object = url.substr(authority.size());
  port = parts->port;
  return true;
}
