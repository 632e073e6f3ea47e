// SPDX-License-Identifier: MIT
// The system's functions for TLS (secur32) and certificates (crypt32). They are loaded when they are first
// asked for: under Wine that takes as long as many a whole program, which speaks plain FTP alone.
#pragma once

#include <cstdint>
#include <string>

#include "framework/windows/windows_api.h"
// Behind the wrapper; sspi.h and schannel.h want to be told what of them is wanted.
#define SECURITY_WIN32
#define SCHANNEL_USE_BLACKLISTS
#define CERT_CHAIN_PARA_HAS_EXTRA_FIELDS
#include <wincrypt.h>
#include <winternl.h>
// In this order: the second one uses what the first one defines.
#include <sspi.h>

#include <schannel.h>

namespace platform {

struct SystemTls {
  PSecurityFunctionTableW security = nullptr;
  decltype(&::CertGetCertificateChain) getChain = nullptr;
  decltype(&::CertFreeCertificateChain) freeChain = nullptr;
  decltype(&::CertFreeCertificateContext) freeCertificate = nullptr;
  decltype(&::CryptHashCertificate2) hash = nullptr;
};

// Null where the system lacks one of them. They stay loaded.
const SystemTls* systemTls();

// Wine keeps credentials and contexts in a table that moves when it grows and that nothing guards. Whoever
// adds to it or takes from it holds this lock alone, whoever uses what is in it shares it.
class SystemTlsLock {
 public:
  void lock() noexcept { ::AcquireSRWLockExclusive(&lock_); }
  void unlock() noexcept { ::ReleaseSRWLockExclusive(&lock_); }
  void lock_shared() noexcept { ::AcquireSRWLockShared(&lock_); }
  void unlock_shared() noexcept { ::ReleaseSRWLockShared(&lock_); }

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
};
SystemTlsLock& systemTlsLock() noexcept;

// The system's words for one of its results, without the end of their line.
std::string systemTlsText(SECURITY_STATUS status);

}  // namespace platform
