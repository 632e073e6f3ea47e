// SPDX-License-Identifier: MIT
#include "framework/internet/tls/ServerJudgement.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "framework/internet/net/InternetErrors.h"
#include "framework/internet/tls/Certificate.h"

namespace internet {
namespace {

using platform::TlsPeer;
using platform::TlsTrust;

std::string hex(std::span<const unsigned char> bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : bytes) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0xfU];
  }
  return text;
}

std::vector<unsigned char> fingerprintOf(const TlsPeer& peer) {
  return platform::sha256(peer.certificate.data(), peer.certificate.size());
}

// What a user compares, and what an administrator looks for. What is short comes first: a host may cut it.
std::string descriptionOf(const TlsPeer& peer, const std::optional<Certificate>& certificate) {
  std::string text = "SHA-256 " + hex(fingerprintOf(peer));
  if (certificate) {
    text += ", valid from " + certificate->notBefore + " to " + certificate->notAfter + ", issued to " +
            certificate->subject + ", by " + certificate->issuer;
  }
  return text;
}

class Judge {
 public:
  Judge(const TlsPeer& peer, const std::string& server)
      : peer_(peer), server_(server), certificate_(readCertificate(peer.certificate)) {}

  [[nodiscard]] std::optional<Failure> ofFingerprint(std::span<const std::uint8_t> expected) const {
    if (std::ranges::equal(fingerprintOf(peer_), expected)) return std::nullopt;
    return fault(kCertificateInvalid, "is not the one with the expected fingerprint");
  }

  [[nodiscard]] std::optional<Failure> ofTrust() const {
    switch (peer_.trust) {
      case TlsTrust::trusted:
        return std::nullopt;
      case TlsTrust::date:
        return fault(kCertificateDate, "has expired or is not valid yet");
      case TlsTrust::unknownAuthority:
        return fault(kCertificateAuthority, "comes from an authority that this system does not trust");
      case TlsTrust::revoked:
        return fault(kCertificateRevoked, "has been revoked");
      case TlsTrust::invalid:
        break;
    }
    return fault(kCertificateInvalid, "is not valid");
  }

  [[nodiscard]] std::optional<Failure> ofName() const {
    if (!certificate_) return fault(kCertificateInvalid, "cannot be read");
    if (isMadeOutTo(*certificate_, server_)) return std::nullopt;
    return fault(kCertificateName, "is made out to another name");
  }

 private:
  [[nodiscard]] Failure fault(std::uint32_t error, std::string_view what) const {
    std::string text = "The certificate of " + server_ + " ";
    text += what;
    if (!peer_.text.empty()) text += " (" + peer_.text + ")";
    return {error, text + ": " + descriptionOf(peer_, certificate_)};
  }

  const TlsPeer& peer_;
  const std::string& server_;
  const std::optional<Certificate> certificate_;
};

}  // namespace

std::optional<Failure> faultOf(const TlsPeer& peer, const std::string& server, const TlsPolicy& policy) {
  if (peer.certificate.empty()) {
    return Failure{kCertificateInvalid, server + " has shown no certificate"};
  }
  const Judge judge(peer, server);
  if (policy.fingerprint) return judge.ofFingerprint(*policy.fingerprint);
  if (!policy.verifies) return std::nullopt;
  if (auto fault = judge.ofTrust()) return fault;
  return judge.ofName();
}

}  // namespace internet
