// SPDX-License-Identifier: MIT
// Certificates: what is shown of one is text without control bytes, and one that fits a server says so in a
// name of its own.
#include "framework/internet/tls/Certificate.h"

#include <algorithm>
#include <string>

#include "framework/text/AsciiText.h"
#include "framework/text/HostText.h"
#include "tests/fuzz/Invariants.h"

namespace {

constexpr std::string_view kServer = "ftp.example.org";

void requireShown(std::string_view text) {
  fuzz::require(hosttext::isUtf8(text) && std::ranges::none_of(text, ascii::isControl));
}

void requireTime(std::string_view time) {
  fuzz::require(time.size() == 23 && time.ends_with(" UTC") && time[4] == '-' && time[13] == ':');
}

bool namesServer(std::string_view name) {
  return ascii::equalBlindToCase(name, kServer) || ascii::equalBlindToCase(name, "*.example.org");
}

void requireSound(const internet::Certificate& certificate) {
  for (const auto& text : {certificate.subject, certificate.issuer, certificate.commonName})
    requireShown(text);
  for (const auto& time : {certificate.notBefore, certificate.notAfter}) requireTime(time);
  for (const auto& name : certificate.dnsNames) {
    fuzz::require(!name.empty() && ascii::isAscii(name));
    requireShown(name);
  }
  for (const auto& address : certificate.addresses)
    fuzz::require(address.size() == 4 || address.size() == 16);
}

void requireJustAnswer(const internet::Certificate& certificate) {
  const bool alternatives = !certificate.dnsNames.empty() || !certificate.addresses.empty();
  const bool named = alternatives ? std::ranges::any_of(certificate.dnsNames, namesServer)
                                  : namesServer(certificate.commonName);
  fuzz::require(isMadeOutTo(certificate, kServer) == named);
  const bool addressed =
      std::ranges::count(certificate.addresses, std::vector<std::uint8_t>{192, 0, 2, 1}) > 0;
  fuzz::require(isMadeOutTo(certificate, "192.0.2.1") == addressed);
}

// Any server's name against one certificate.
void requireOnlyItsServers(std::string_view server) {
  internet::Certificate certificate;
  certificate.dnsNames = {std::string(kServer), "*.wild.example.org"};
  if (!isMadeOutTo(certificate, server)) return;
  if (server.ends_with('.')) server.remove_suffix(1);
  const std::size_t dot = server.find('.');
  fuzz::require(ascii::equalBlindToCase(server, kServer) ||
                (dot > 0 && ascii::equalBlindToCase(server.substr(dot), ".wild.example.org")));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (const auto certificate = internet::readCertificate({data, size})) {
    requireSound(*certificate);
    requireJustAnswer(*certificate);
  }
  requireOnlyItsServers(fuzz::textOf(data, size));
  return 0;
}
