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

}  // namespace

std::uint32_t TQXIP::HTTPDownloadFile(const char*, const char*, std::uint32_t, const char*, std::uint64_t*,
                                      QXHostValue, QXHostValue) {
  return notAvailable(*this, "HTTPDownloadFile", kNoLine);
}
