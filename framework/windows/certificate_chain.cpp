// SPDX-License-Identifier: MIT
#include "framework/windows/certificate_chain.h"

#include <optional>
#include <string>

namespace platform {
namespace {

// Nothing comes from the network while a connection is made: neither lists of what was revoked nor what a
// certificate says where to find. Each has a flag of its own.
constexpr DWORD kKnownRevocations =
    CERT_CHAIN_REVOCATION_CHECK_CHAIN_EXCLUDE_ROOT | CERT_CHAIN_REVOCATION_CHECK_CACHE_ONLY;
constexpr DWORD kFromHere = CERT_CHAIN_CACHE_ONLY_URL_RETRIEVAL | kKnownRevocations;
// But for a root that Windows trusts and keeps at home until it is first needed.
constexpr DWORD kWithSystemsRoots = CERT_CHAIN_DISABLE_AIA | kKnownRevocations;
constexpr DWORD kRootTimeoutMs = 5'000;

constexpr DWORD kUnknownAuthority = CERT_TRUST_IS_PARTIAL_CHAIN | CERT_TRUST_IS_UNTRUSTED_ROOT;
constexpr DWORD kNoFault = CERT_TRUST_REVOCATION_STATUS_UNKNOWN | CERT_TRUST_IS_OFFLINE_REVOCATION |
                           CERT_TRUST_IS_NOT_TIME_NESTED;  // the last one is of a rule long gone

// The faults of the chain, CERT_TRUST_...; none when the system has no answer.
std::optional<DWORD> faults(const SystemTls& system, PCCERT_CONTEXT certificate, DWORD how) {
  std::string serverUse = szOID_PKIX_KP_SERVER_AUTH;
  LPSTR use = serverUse.data();
  CERT_CHAIN_PARA wanted{};
  wanted.cbSize = sizeof wanted;
  wanted.RequestedUsage = {USAGE_MATCH_TYPE_OR, {1, &use}};
  wanted.dwUrlRetrievalTimeout = kRootTimeoutMs;
  PCCERT_CHAIN_CONTEXT chain = nullptr;
  if (!system.getChain(nullptr, certificate, nullptr, certificate->hCertStore, &wanted, how, nullptr,
                       &chain)) {
    return std::nullopt;
  }
  const DWORD found = chain->TrustStatus.dwErrorStatus;
  system.freeChain(chain);
  return found & ~kNoFault;
}

}  // namespace

TlsTrust judgeChain(const SystemTls& system, PCCERT_CONTEXT certificate) {
  auto found = faults(system, certificate, kFromHere);
  if (found && (*found & kUnknownAuthority) != 0) found = faults(system, certificate, kWithSystemsRoots);
  if (!found) return TlsTrust::invalid;
  if (*found == 0) return TlsTrust::trusted;
  if ((*found & CERT_TRUST_IS_REVOKED) != 0) return TlsTrust::revoked;
  // What else is said about a chain that comes from nobody is of no interest.
  if ((*found & kUnknownAuthority) != 0) return TlsTrust::unknownAuthority;
  return *found == CERT_TRUST_IS_NOT_TIME_VALID ? TlsTrust::date : TlsTrust::invalid;
}

}  // namespace platform
