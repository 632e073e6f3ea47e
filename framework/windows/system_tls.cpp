// SPDX-License-Identifier: MIT
#include "framework/windows/system_tls.h"

#include <array>
#include <cstdio>

#include "framework/platform/last_error.h"
#include "framework/windows/system_library.h"

namespace platform {
namespace {

bool load(SystemTls& tls) {
  const LastErrorKeeper keeper;
  const HMODULE security = loadSystemLibrary(L"secur32.dll");
  const HMODULE crypt = loadSystemLibrary(L"crypt32.dll");
  INIT_SECURITY_INTERFACE_W table = nullptr;
  if (!security || !crypt || !findFunction(security, "InitSecurityInterfaceW", table)) return false;
  // Whoever asks for what was revoked loads and frees this one each time; now, it stays.
  loadSystemLibrary(L"cryptnet.dll");
  tls.security = table();
  return tls.security && findFunction(crypt, "CertGetCertificateChain", tls.getChain) &&
         findFunction(crypt, "CertFreeCertificateChain", tls.freeChain) &&
         findFunction(crypt, "CertFreeCertificateContext", tls.freeCertificate) &&
         findFunction(crypt, "CryptHashCertificate2", tls.hash);
}

}  // namespace

const SystemTls* systemTls() {
  static SystemTls tls;
  static const bool loaded = load(tls);
  return loaded ? &tls : nullptr;
}

SystemTlsLock& systemTlsLock() noexcept {
  static SystemTlsLock lock;
  return lock;
}

std::string systemTlsText(SECURITY_STATUS status) {
  std::string text = systemErrorText(static_cast<std::uint32_t>(status));
  while (!text.empty() && (text.back() == '\r' || text.back() == '\n' || text.back() == ' ')) text.pop_back();
  if (!text.empty()) return text;
  std::array<char, 16> number{};
  std::snprintf(number.data(), number.size(), "0x%08lx", static_cast<unsigned long>(status));
  return number.data();
}

}  // namespace platform
