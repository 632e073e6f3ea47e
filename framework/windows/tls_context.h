// SPDX-License-Identifier: MIT
// What the connections of one login share on Windows: the system's credential.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "framework/platform/tls.h"
#include "framework/windows/system_tls.h"

namespace platform {

// The system finds the session to resume by the credential and the name of the server: a login has one of
// each for all its connections.
class SystemContext final : public TlsContext {
 public:
  SystemContext(const SystemTls& system, const TlsSettings& settings);
  ~SystemContext() override;
  SystemContext(const SystemContext&) = delete;
  SystemContext& operator=(const SystemContext&) = delete;

  // Not SEC_E_OK: of no use, for this reason.
  [[nodiscard]] SECURITY_STATUS status() const noexcept { return status_; }
  [[nodiscard]] const SystemTls& system() const noexcept { return system_; }
  [[nodiscard]] CredHandle* credential() noexcept { return &credential_; }
  [[nodiscard]] wchar_t* server() noexcept { return server_.data(); }

  // The judgement over a server's certificate, as its connection shows it. One that was trusted stays so: the
  // next connections of the login show it again.
  [[nodiscard]] TlsTrust judge(PCCERT_CONTEXT certificate);

 private:
  SECURITY_STATUS acquireNewest() noexcept;
  SECURITY_STATUS acquireTls12() noexcept;
  SECURITY_STATUS acquire(void* wanted) noexcept;

  const SystemTls& system_;
  std::wstring server_;
  CredHandle credential_{};
  SECURITY_STATUS status_ = SEC_E_UNSUPPORTED_FUNCTION;
  std::mutex mutex_;
  std::vector<BYTE> trusted_;  // DER; under the mutex
};

}  // namespace platform
