// SPDX-License-Identifier: MIT
// Writes certificates for tests: each part is a text that a test may replace by what no tool would make.
#pragma once

#include <initializer_list>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "framework/internet/tls/Certificate.h"

namespace der {

inline std::string element(int tag, std::string_view content) {
  std::string length;
  for (std::size_t left = content.size(); left > 0; left >>= 8) length.insert(0, 1, static_cast<char>(left));
  if (content.size() < 0x80) length.assign(1, static_cast<char>(content.size()));
  if (content.size() >= 0x80) length.insert(0, 1, static_cast<char>(0x80 + length.size()));
  return static_cast<char>(tag) + length + std::string(content);
}

inline std::string sequence(std::initializer_list<std::string> parts) {
  return element(0x30, std::accumulate(parts.begin(), parts.end(), std::string()));
}

inline const std::string kCommonName = "\x55\x04\x03";
inline const std::string kOrganisation = "\x55\x04\x0a";
inline constexpr int kUtf8 = 0x0c;
inline constexpr int kPrintable = 0x13;

// One level of a name.
inline std::string attribute(const std::string& objectId, int tag, std::string_view value) {
  return element(0x31, sequence({element(0x06, objectId), element(tag, value)}));
}

inline std::string utcTime(std::string_view text) { return element(0x17, text); }
inline std::string generalizedTime(std::string_view text) { return element(0x18, text); }

inline std::string dnsName(std::string_view name) { return element(0x82, name); }
inline std::string address(std::string_view bytes) { return element(0x87, bytes); }

inline std::string extension(std::string_view objectId, const std::string& value) {
  return sequence({element(0x06, objectId), element(0x04, value)});
}

inline std::string alternativeNames(std::initializer_list<std::string> names) {
  return extension("\x55\x1d\x11", sequence(names));
}

struct Parts {
  std::string serial = element(0x02, "\x01");
  std::string issuer = sequence({attribute(kCommonName, kUtf8, "Authority")});
  std::string notBefore = utcTime("261122100000Z");
  std::string notAfter = utcTime("361122100000Z");
  std::string subject = sequence({attribute(kCommonName, kUtf8, "ftp.example.org")});
  std::string key = sequence({});
  std::optional<std::string> extensions;  // their sequence; none: no extensions at all
  std::string behind;                     // the body's own end
};

inline std::string certificate(const Parts& parts) {
  const std::string algorithm = sequence({element(0x06, "\x2a\x03")});
  const std::string extensions = parts.extensions ? element(0xa3, *parts.extensions) : "";
  const std::string version = element(0xa0, element(0x02, "\x02"));
  const std::string body =
      sequence({version, parts.serial, algorithm, parts.issuer, sequence({parts.notBefore, parts.notAfter}),
                parts.subject, parts.key, extensions, parts.behind});
  return sequence({body, algorithm, element(0x03, std::string_view("\0sign", 5))});
}

inline std::optional<internet::Certificate> read(std::string_view der) {
  return internet::readCertificate(std::span(reinterpret_cast<const std::uint8_t*>(der.data()), der.size()));
}

inline std::optional<internet::Certificate> read(const Parts& parts) { return read(certificate(parts)); }

}  // namespace der
