// SPDX-License-Identifier: MIT
// The client's event hooks. The library calls them through the object's table; a host may, too.
#include <cstdio>

#include "Src/HostCall.h"
#include "Src/MessageLines.h"
#include "Src/OperationGuard.h"
#include "Src/QXIP.h"
#include "Src/SharedFlag.h"
#include "framework/internet/FtpFileFind.h"
#include "framework/internet/net/InternetErrors.h"
#include "support/Diagnostics.h"

namespace {

struct StatusText {
  std::uint32_t status;
  const char* text;    // null: nothing is passed on
  bool named = false;  // the notification's own text follows
};

constexpr StatusText kStatusTexts[] = {
    {internet::kStatusResolvingName, "Resolving name ", true},
    {internet::kStatusNameResolved, "Name resolved ", true},
    {internet::kStatusConnecting, "Connecting to socket address"},
    {internet::kStatusConnected, "Connected to socket address"},
    {internet::kStatusSendingRequest, "Sending request"},
    {internet::kStatusRequestSent, "Request sent"},
    {internet::kStatusReceivingResponse, nullptr},
    {internet::kStatusResponseReceived, "Response received"},
    {internet::kStatusClosing, "Closing the connection to the server"},
    {internet::kStatusClosed, "Connection to the server closed"},
    {internet::kStatusHandleCreated, "Handle created"},
    {internet::kStatusHandleClosing, nullptr},
    {internet::kStatusRequestComplete, "Request complete"},
    {internet::kStatusRedirect, "Being redirected"},
};

bool mayReconnect(std::uint32_t error) {
  return error == internet::kTimeout || error == internet::kConnectionAborted;
}

}  // namespace

QXBool TQXIP::OnBeforeDisconnect() { return 1; }

QXBool TQXIP::OnAfterDisconnect() { return 1; }

void TQXIP::OnIPError(std::uint32_t nError, const char* pszText, std::uint32_t* pRetries) {
  GuardOperation(*this, [&] {
    if (pszText != nullptr) {
      WriteMessage(*this, "TQXIP::OnIPError: '%s' (%d)", pszText, static_cast<int>(nError));
    } else {
      WriteMessage(*this, "TQXIP::OnIPError: 'NULL'");
    }
    if (mayReconnect(nError) && pRetries != nullptr && IsSet(m_bConnected)) {
      const std::uint32_t retries = *pRetries > 0 ? *pRetries : 1;
      HostCall([&] { OnAfterDisconnect(); });
      *pRetries = HostCall([&] { return FTPReConnect(retries, 0); }) != 0 ? retries : 0;
    }
    if (platform::stopRequested()) return;
    ClearErrorInfo(m_pErrorInfo);
    ReportFailure(*this, sites::kIPErrorLine, pszText, nError);
  });
}

void TQXIP::OnAuthenticationFailed() {
  GuardOperation(
      *this, [&] { ReportTitled(*this, sites::kAuthenticationFailedLine, "TQXIP::Authentication failed!"); });
}

void TQXIP::OnAuthenticationNeeded() {
  GuardOperation(
      *this, [&] { ReportTitled(*this, sites::kAuthenticationNeededLine, "TQXIP::Authentication needed!"); });
}

void TQXIP::OnFailure() {
  GuardOperation(*this, [&] { ReportTitled(*this, sites::kFailureLine, "TQXIP::Failure!"); });
}

void TQXIP::OnConnect() {
  GuardOperation(*this, [&] {
    SetFlag(m_bConnected, true);
    DeleteFinders();
    MakeFinders();
  });
}

void TQXIP::MakeFinders() {
  if (m_pFtpConnection == nullptr) return;
  for (CFtpFileFind** finder : {&m_pFTPFileFind, &m_pFTPDirFind, &m_pFTPGetDir, &m_pFTPFileSize}) {
    *finder = new CFtpFileFind(m_pFtpConnection, 1);
  }
}

void TQXIP::OnDisconnect() { SetFlag(m_bConnected, false); }

void TQXIP::OnSuccess() { DebugTrace("TQXIP::OnSuccess"); }

void TQXIP::OnTransactionStart() {}

void TQXIP::OnTransactionStop() {}

void TQXIP::OnStatus(const char* /*pszText*/) {}

void TQXIP::OnNotify(QXHostValue /*nValue*/) {}

QXBool TQXIP::OnPoll(QXHostValue /*nPollArg1*/, QXHostValue /*nPollArg2*/, QXHostValue /*nTransfer*/,
                     QXBool* /*pbReconnect*/) {
  return 0;
}

void TQXIP::OnStatusCallback(std::uint32_t /*nContext*/, std::uint32_t nStatus, const void* pInformation) {
  GuardOperation(*this, [&] {
    char text[1024] = "";
    for (const StatusText& candidate : kStatusTexts) {
      if (candidate.status != nStatus) continue;
      if (candidate.text == nullptr) return;
      const bool named = candidate.named && pInformation != nullptr;
      TraceMessage(text, sizeof text, "%s%s", candidate.text,
                   named ? static_cast<const char*>(pInformation) : "");
      OnStatusText(text);
      return;
    }
    TraceMessage(text, sizeof text, "Unknown status: %d", static_cast<int>(nStatus));
    OnStatusText(text);
  });
}

void TQXIP::OnStatusText(const char* /*pszText*/) {}
