// SPDX-License-Identifier: MIT
// Operations of the interface that this version does not carry out: each stands in its slot and fails with a
// clear message, so that hosts can tell "not available" from a server's refusal.
#include "Src/MessageLines.h"
#include "Src/OperationGuard.h"
#include "Src/QXIP.h"
#include "framework/platform/last_error.h"

namespace {

constexpr std::uint32_t kNotImplemented = 120;
constexpr int kNoLine = 0;

QXBool notAvailable(TQXIP& client, const char* operation, int line) {
  return GuardOperation([&]() -> QXBool {
    WriteMessage(client, "TQXIP::%s is not available in this version!", operation);
    platform::setLastError(kNotImplemented);
    ReportFailure(client, line, client.m_szMessage);
    return 0;
  });
}

QXBool notAvailable(TQXIP& client, const FailureSite& site) {
  return notAvailable(client, site.name, site.line);
}

}  // namespace

QXBool TQXIP::FillWipePattern(std::uint32_t, std::uint32_t) {
  return notAvailable(*this, "FillWipePattern", kNoLine);
}

QXBool TQXIP::WipeWith(const char*, std::uint32_t, std::uint32_t) {
  return notAvailable(*this, "WipeWith", kNoLine);
}

QXBool TQXIP::Wipe(const char*) { return notAvailable(*this, "Wipe", kNoLine); }

std::uint32_t TQXIP::HTTPDownloadFile(const char*, const char*, std::uint32_t, const char*, std::uint64_t*,
                                      QXHostValue, QXHostValue) {
  return notAvailable(*this, "HTTPDownloadFile", kNoLine);
}

QXBool TQXIP::FTPDestroyFileContent(const char*, std::uint32_t, std::uint32_t, QXHostValue, QXHostValue) {
  return notAvailable(*this, "FTPDestroyFileContent", kNoLine);
}

QXBool TQXIP::FTPRmvFile(const char*, std::uint32_t, std::uint32_t, QXHostValue, QXHostValue) {
  return notAvailable(*this, sites::kRmvFile);
}

QXBool TQXIP::FTPRmvDir(const char*, std::uint32_t, QXHostValue, QXHostValue) {
  return notAvailable(*this, sites::kRmvDir);
}

QXBool TQXIP::FTPCreateDir(const char*, std::uint32_t, QXHostValue, QXHostValue) {
  return notAvailable(*this, sites::kCreateDir);
}

QXBool TQXIP::FTPCreateNewDir(const char*, char*, const char*, std::uint32_t) {
  return notAvailable(*this, sites::kCreateNewDir);
}
