// SPDX-License-Identifier: MIT
#include "framework/internet/tls/Certificate.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

#include "framework/internet/tls/Der.h"
#include "framework/internet/tls/DistinguishedName.h"
#include "framework/platform/resolver.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

// More than any server shows; the systems' own limits are of this order.
constexpr std::size_t kLargestCertificate = std::size_t{100} * 1024;

// "20261122100000Z", the one form that is allowed (RFC 5280, 4.1.2.5.2).
std::string readTime(std::string_view text) {
  const auto number = [&text](std::size_t at, std::size_t size) {
    unsigned value = 0;
    if (!ascii::readNumber(text.substr(at, size), value)) throw NotDer{};
    return value;
  };
  if (text.size() != 15 || text.back() != 'Z') throw NotDer{};
  const std::chrono::year_month_day day{std::chrono::year(static_cast<int>(number(0, 4))),
                                        std::chrono::month(number(4, 2)), std::chrono::day(number(6, 2))};
  if (!day.ok() || number(8, 2) > 23 || number(10, 2) > 59 || number(12, 2) > 59) throw NotDer{};
  std::string shown(text.substr(0, 14));
  shown.insert(12, ":").insert(10, ":").insert(8, " ").insert(6, "-").insert(4, "-");
  return shown + " UTC";
}

std::string takeTime(DerReader& reader) {
  const DerElement element = reader.next();
  const std::string text(element.content.begin(), element.content.end());
  if (element.tag == DerTag::generalizedTime) return readTime(text);
  if (element.tag != DerTag::utcTime) throw NotDer{};
  return readTime((text < "50" ? "20" : "19") + text);  // two digits of a year reach from 1950 to 2049
}

void readValidity(DerBytes content, Certificate& certificate) {
  DerReader reader(content);
  certificate.notBefore = takeTime(reader);
  certificate.notAfter = takeTime(reader);
  reader.requireEnd();
}

// A byte that a name cannot have would end it early, or look like another, somewhere else.
std::string dnsName(DerBytes content) {
  std::string name(content.begin(), content.end());
  if (name.empty() || !ascii::isAscii(name) || std::ranges::any_of(name, ascii::isControl)) throw NotDer{};
  return name;
}

std::vector<std::uint8_t> addressBytes(DerBytes content) {
  if (content.size() != 4 && content.size() != 16) throw NotDer{};
  return {content.begin(), content.end()};
}

void readAlternativeNames(DerBytes value, Certificate& certificate) {
  DerReader whole(value);
  DerReader names(whole.take(DerTag::sequence));
  whole.requireEnd();
  do {
    const DerElement name = names.next();
    if (name.tag == plainField(2)) certificate.dnsNames.push_back(dnsName(name.content));
    if (name.tag == plainField(7)) certificate.addresses.push_back(addressBytes(name.content));
  } while (!names.atEnd());
}

void readExtensions(DerBytes content, Certificate& certificate) {
  constexpr std::uint8_t kSubjectAltName[] = {0x55, 0x1d, 0x11};  // 2.5.29.17
  DerReader whole(content);
  DerReader extensions(whole.take(DerTag::sequence));
  whole.requireEnd();
  bool named = false;
  while (!extensions.atEnd()) {
    DerReader extension(extensions.take(DerTag::sequence));
    const DerBytes id = extension.take(DerTag::objectId);
    extension.takeIf(DerTag::boolean);
    const DerBytes value = extension.take(DerTag::octetString);
    extension.requireEnd();
    if (!std::ranges::equal(id, kSubjectAltName)) continue;
    if (std::exchange(named, true)) throw NotDer{};
    readAlternativeNames(value, certificate);
  }
}

// RFC 5280, 4.1.
Certificate readBody(DerBytes content) {
  Certificate certificate;
  DerReader body(content);
  body.takeIf(nestedField(0));  // version
  body.take(DerTag::integer);   // serial number
  body.take(DerTag::sequence);  // the signature's algorithm
  certificate.issuer = readDistinguishedName(body.take(DerTag::sequence)).text;
  readValidity(body.take(DerTag::sequence), certificate);
  DistinguishedName subject = readDistinguishedName(body.take(DerTag::sequence));
  certificate.subject = std::move(subject.text);
  certificate.commonName = std::move(subject.commonName);
  body.take(DerTag::sequence);  // the key
  body.takeIf(plainField(1));   // identifiers of times past
  body.takeIf(plainField(2));
  if (const auto extensions = body.takeIf(nestedField(3))) readExtensions(*extensions, certificate);
  body.requireEnd();
  return certificate;
}

bool isLabel(std::string_view label) noexcept {
  return !label.empty() && std::ranges::all_of(label, [](char c) {
    return ascii::isDigit(c) || c == '-' || c == '_' ||
           (ascii::lowerCase(c) >= 'a' && ascii::lowerCase(c) <= 'z');
  });
}

bool isDnsName(std::string_view name) noexcept {
  for (;;) {
    const std::size_t dot = name.find('.');
    if (!isLabel(name.substr(0, dot))) return false;
    if (dot == std::string_view::npos) return true;
    name.remove_prefix(dot + 1);
  }
}

// "*.example.org" stands for "ftp.example.org", not for what is above or below that.
bool matchesWildcard(std::string_view domain, std::string_view server) noexcept {
  const std::size_t dot = server.find('.');
  return dot != std::string_view::npos && domain.find('.') != std::string_view::npos && isDnsName(domain) &&
         ascii::equalBlindToCase(domain, server.substr(dot + 1));
}

bool matchesName(std::string_view name, std::string_view server) noexcept {
  if (name.starts_with("*.")) return matchesWildcard(name.substr(2), server);
  return isDnsName(name) && ascii::equalBlindToCase(name, server);
}

bool isAddressOf(const platform::SocketAddress& address, const std::vector<std::uint8_t>& bytes) {
  return std::ranges::equal(bytes, std::span(address.host).first(address.v6 ? 16 : 4));
}

}  // namespace

std::optional<Certificate> readCertificate(std::span<const std::uint8_t> der) {
  if (der.size() > kLargestCertificate) return std::nullopt;
  try {
    DerReader whole(der);
    DerReader parts(whole.take(DerTag::sequence));
    whole.requireEnd();
    Certificate certificate = readBody(parts.take(DerTag::sequence));
    parts.take(DerTag::sequence);   // the signature's algorithm
    parts.take(DerTag::bitString);  // the signature
    parts.requireEnd();
    return certificate;
  } catch (const NotDer&) {
    return std::nullopt;
  }
}

bool isMadeOutTo(const Certificate& certificate, std::string_view server) {
  if (server.ends_with('.')) server.remove_suffix(1);
  if (server.empty() || std::ranges::any_of(server, ascii::isControl)) return false;
  const auto addresses = platform::numericAddresses(std::string(server), 0);
  if (!addresses.empty()) {
    return std::ranges::any_of(certificate.addresses, [&addresses](const auto& bytes) {
      return isAddressOf(addresses.front(), bytes);
    });
  }
  if (!isDnsName(server)) return false;
  if (certificate.dnsNames.empty() && certificate.addresses.empty()) {
    return matchesName(certificate.commonName, server);
  }
  return std::ranges::any_of(certificate.dnsNames,
                             [server](const std::string& name) { return matchesName(name, server); });
}

}  // namespace internet
