// SPDX-License-Identifier: MIT
#include "framework/windows/tls_context.h"

#include <algorithm>
#include <span>

#include "framework/windows/certificate_chain.h"

namespace platform {
namespace {

constexpr DWORD kFlags = SCH_CRED_NO_DEFAULT_CREDS | SCH_CRED_MANUAL_CRED_VALIDATION | SCH_USE_STRONG_CRYPTO;

// Servers are asked for without the dot that ends a name.
std::wstring serverName(std::string text) {
  if (text.ends_with('.')) text.pop_back();
  const int size = static_cast<int>(text.size());
  std::wstring result(text.size(), L'\0');
  const int used = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(), size);
  result.resize(static_cast<std::size_t>(used));
  return result;
}

}  // namespace

SystemContext::SystemContext(const SystemTls& system, const TlsSettings& settings)
    : system_(system), server_(serverName(settings.server)) {
  const bool onlyTls12 = settings.onlyTls12 || settings.resumesData;
  if (!onlyTls12) status_ = acquireNewest();
  if (status_ != SEC_E_OK) status_ = acquireTls12();
}

SystemContext::~SystemContext() {
  const std::unique_lock lock(systemTlsLock());
  if (status_ == SEC_E_OK) system_.security->FreeCredentialsHandle(&credential_);
}

// The structure of newer systems names what is not wanted; older ones refuse it.
SECURITY_STATUS SystemContext::acquireNewest() noexcept {
  TLS_PARAMETERS parameters{};
  parameters.grbitDisabledProtocols = ~static_cast<DWORD>(SP_PROT_TLS1_2_CLIENT | SP_PROT_TLS1_3_CLIENT);
  SCH_CREDENTIALS wanted{};
  wanted.dwVersion = SCH_CREDENTIALS_VERSION;
  wanted.dwFlags = kFlags;
  wanted.cTlsParameters = 1;
  wanted.pTlsParameters = &parameters;
  return acquire(&wanted);
}

SECURITY_STATUS SystemContext::acquireTls12() noexcept {
  SCHANNEL_CRED wanted{};
  wanted.dwVersion = SCHANNEL_CRED_VERSION;
  wanted.dwFlags = kFlags;
  wanted.grbitEnabledProtocols = SP_PROT_TLS1_2_CLIENT;
  return acquire(&wanted);
}

SECURITY_STATUS SystemContext::acquire(void* wanted) noexcept {
  std::wstring package = UNISP_NAME_W;
  TimeStamp expiry{};
  const std::unique_lock lock(systemTlsLock());
  return system_.security->AcquireCredentialsHandleW(nullptr, package.data(), SECPKG_CRED_OUTBOUND, nullptr,
                                                     wanted, nullptr, nullptr, &credential_, &expiry);
}

TlsTrust SystemContext::judge(PCCERT_CONTEXT certificate) {
  const std::lock_guard lock(mutex_);
  const std::span shown(certificate->pbCertEncoded, certificate->cbCertEncoded);
  if (std::ranges::equal(shown, trusted_)) return TlsTrust::trusted;
  const TlsTrust trust = judgeChain(system_, certificate);
  if (trust == TlsTrust::trusted) trusted_.assign(shown.begin(), shown.end());
  return trust;
}

std::shared_ptr<TlsContext> makeTlsContext(const TlsSettings& settings, std::string& reason) {
  const SystemTls* system = systemTls();
  if (!system) {
    reason = "the system has no TLS";
    return nullptr;
  }
  auto context = std::make_shared<SystemContext>(*system, settings);
  if (context->status() == SEC_E_OK) return context;
  reason = systemTlsText(context->status());
  return nullptr;
}

}  // namespace platform
