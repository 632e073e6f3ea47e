// SPDX-License-Identifier: MIT
#include "framework/windows/system_tls.h"

#include <array>
#include <cstdio>

#include "framework/platform/last_error.h"

namespace platform {
namespace {

// From the system's own folder alone, whatever lies beside the host's program.
HMODULE loadSystemLibrary(const wchar_t* name) {
  std::array<wchar_t, MAX_PATH> folder{};
  const UINT size = ::GetSystemDirectoryW(folder.data(), MAX_PATH);
  if (size == 0 || size >= MAX_PATH) return nullptr;
  return ::LoadLibraryW((std::wstring(folder.data()) + L'\\' + name).c_str());
}

template <class Function>
bool find(HMODULE library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
  return function != nullptr;
}

bool load(SystemTls& tls) {
  const LastErrorKeeper keeper;
  const HMODULE security = loadSystemLibrary(L"secur32.dll");
  const HMODULE crypt = loadSystemLibrary(L"crypt32.dll");
  INIT_SECURITY_INTERFACE_W table = nullptr;
  if (!security || !crypt || !find(security, "InitSecurityInterfaceW", table)) return false;
  // Whoever asks for what was revoked loads and frees this one each time; now, it stays.
  loadSystemLibrary(L"cryptnet.dll");
  tls.security = table();
  return tls.security && find(crypt, "CertGetCertificateChain", tls.getChain) &&
         find(crypt, "CertFreeCertificateChain", tls.freeChain) &&
         find(crypt, "CertFreeCertificateContext", tls.freeCertificate) &&
         find(crypt, "CryptHashCertificate2", tls.hash);
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
