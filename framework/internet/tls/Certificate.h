// SPDX-License-Identifier: MIT
// What a certificate says, read from its DER bytes by code of ours, so that both platforms judge names alike.
// Reads hostile bytes: what is malformed is no certificate.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace internet {

struct Certificate {
  std::string subject;    // "CN=ftp.example.org, O=Example", for people; control bytes as '?'
  std::string issuer;     // the same
  std::string notBefore;  // "2026-11-22 10:00:00 UTC"
  std::string notAfter;
  std::string commonName;                            // of the subject, the last one; "" if there is none
  std::vector<std::string> dnsNames;                 // of the subject's alternative names
  std::vector<std::vector<std::uint8_t>> addresses;  // the same, 4 or 16 bytes each
};

std::optional<Certificate> readCertificate(std::span<const std::uint8_t> der);

// Whether the certificate was made out to this server, a DNS name or an address: an exact name, a '*' in
// place of the whole first label (of at least three), an address byte by byte. The common name counts where
// there is no alternative name at all, and never for an address. A final dot of the server's name is
// ignored; letters of ASCII match in both cases.
bool isMadeOutTo(const Certificate& certificate, std::string_view server);

}  // namespace internet
