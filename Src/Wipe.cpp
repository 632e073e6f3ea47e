// SPDX-License-Identifier: MIT
// Content destruction. Hosts may put a real one into these slots; the library's own changes no file and says
// so by doing nothing but answering 1. Only FillWipePattern has an effect.
#include <cstdlib>
#include <ctime>

#include "Src/HostCall.h"
#include "Src/OperationGuard.h"
#include "Src/QXIP.h"

namespace {

constexpr std::uint32_t kRandom = 1;  // can therefore never be stored as a pattern
constexpr std::uint32_t kOverwrites[] = {0, 0xFFFFFFFF, 0, 0xFFFFFFFF, 0, 0xFFFFFFFF};
constexpr std::uint32_t kRetries = 1;

}  // namespace

QXBool TQXIP::FillWipePattern(std::uint32_t nValue, std::uint32_t nCount) {
  if (m_pWipePattern == nullptr) return 1;
  const bool random = nValue == kRandom;
  // allowed: srand: hosts know the random pattern as that of the C library, seeded with the time
  if (random) std::srand(static_cast<unsigned>(std::time(nullptr)));
  for (std::uint32_t i = 0; i < nCount; ++i) {
    // allowed: rand: as above; nothing secret comes of it
    m_pWipePattern[i] = random ? static_cast<std::uint32_t>(std::rand()) : nValue;
  }
  return 1;
}

QXBool TQXIP::WipeWith(const char* /*pszPath*/, std::uint32_t /*nPattern*/, std::uint32_t /*nRetries*/) {
  return 1;
}

QXBool TQXIP::Wipe(const char* pszPath) {
  return GuardOperation(*this, [&]() -> QXBool {
    if (pszPath == nullptr) return 0;
    for (const std::uint32_t pattern : kOverwrites) {
      if (HostCall([&] { return WipeWith(pszPath, pattern, kRetries); }) == 0) return 0;
    }
    return WipeWith(pszPath, kRandom, kRetries);
  });
}

QXBool TQXIP::FTPDestroyFileContent(const char* /*pszPath*/, std::uint32_t /*nMethod*/,
                                    std::uint32_t /*nRetries*/, QXHostValue /*nPollArg1*/,
                                    QXHostValue /*nPollArg2*/) {
  return 1;
}
