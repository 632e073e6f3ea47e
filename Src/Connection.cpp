// SPDX-License-Identifier: MIT
// Login data, connect, disconnect, and the settings that this client does not support.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "Src/HostCall.h"
#include "Src/MessageLines.h"
#include "Src/OperationGuard.h"
#include "Src/PrivateConnection.h"
#include "Src/QXIP.h"
#include "Src/SharedFlag.h"
#include "Src/TInternetSession.h"
#include "framework/internet/FtpConnection.h"
#include "framework/text/AsciiText.h"
#include "support/BoundedText.h"
#include "support/Paths.h"

namespace {

constexpr std::uint32_t kDefaultPort = 21;

// The bare host name inside `host`: behind the first scheme prefix that matches, or behind the two characters
// that a name starting with a backslash has in front. A bare name is its own.
const char* bareHostName(const char* host) {
  if (*host != '\\') {
    for (const std::string_view scheme : {"ftp://", "http://", "https://"}) {
      if (!ascii::startsBlindToCase(host, scheme)) continue;
      host += scheme.size();
      break;
    }
  }
  if (*host == '\\') host += std::min<std::size_t>(std::strlen(host), 2);
  return host;
}

}  // namespace

void TQXIP::StoreLogin(const char* pszHost, const char* pszUser, const char* pszPassword, std::uint32_t nPort,
                       QXBool bPassive) noexcept {
  if (pszHost != nullptr) m_hostText.Store(bareHostName(pszHost));
  if (pszUser != nullptr) m_userText.Store(pszUser);
  if (pszPassword != nullptr) m_passwordText.Store(pszPassword);
  m_nPort = nPort;
  m_bPassive = bPassive;
}

bool TQXIP::LoginFits() const noexcept {
  return m_hostText.Fits() && m_userText.Fits() && m_passwordText.Fits();
}

LoginTexts TQXIP::Login() const noexcept {
  return {m_hostText.Text(), m_userText.Text(), m_passwordText.Text()};
}

QXBool TQXIP::FTPSetLogin(const char* pszHost, const char* pszUser, const char* pszPassword,
                          std::uint32_t nPort, QXBool bPassive) {
  return GuardOperation(*this, [&]() -> QXBool {
    StoreLogin(pszHost, pszUser, pszPassword, nPort, bPassive);
    return 1;
  });
}

void TQXIP::OpenConnection(TInternetSession& session) {
  HostCall([&] { ReleaseConnection(); });
  CFtpConnection* connection = OpenFtpConnection(*this, session, nullptr);
  m_pFtpConnection = connection;
  if (connection != nullptr) connection->ReopenOnDemand(true);
}

QXBool TQXIP::FTPConnect(const char* pszHost, const char* pszUser, const char* pszPassword,
                         std::uint32_t nPort, QXBool bPassive, std::uint32_t /*nValue*/,
                         TInternetSession* pSession) {
  return GuardOperation(*this, [&]() -> QXBool {
    WriteMessage(*this, "TQXIP::FTPConnect - IN: '%s'", pszHost != nullptr ? pszHost : "NULL");
    bool ok = IsSet(m_bInitialized) && pszHost != nullptr;
    if (ok) StoreLogin(pszHost, pszUser, pszPassword, nPort, bPassive);
    TInternetSession* session = pSession != nullptr ? pSession : m_pInternetSession;
    if (session == nullptr) {
      session = m_pInternetSession = NewSession(*this);
      SetFlag(m_bInitialized, true);
      ok = true;  // whatever was missing before: without a host of this call it is the stored one's turn
    }
    const RunningOperation connecting(*this, RunningOperation::Kind::connecting);
    if (ok) {
      OpenConnection(*session);
      ok = m_pFtpConnection != nullptr;
    }
    if (ok) HostCall([&] { OnConnect(); });
    WriteMessage(*this, "TQXIP::FTPConnect to '%s:%d' failed!", pszHost != nullptr ? pszHost : "(null)",
                 static_cast<int>(nPort));
    if (!ok) ReportFailure(*this, sites::kConnectLine, m_szMessage);
    WriteMessage(*this, "TQXIP::FTPConnect - OUT: %s", ok ? "OK!" : "Failed!");
    return ok ? 1 : 0;
  });
}

QXBool TQXIP::FTPReConnect(std::uint32_t /*nRetries*/, QXHostValue /*nValue*/) { return 1; }

// The connection itself stays: it goes with the next connect or with the object. But nobody logs in any more
// with login data that is to be forgotten.
QXBool TQXIP::FTPDisconnect() {
  return GuardOperation(*this, [&]() -> QXBool {
    const bool ok = IsSet(m_bInitialized);
    if (ok) {
      if (m_pFtpConnection != nullptr) m_pFtpConnection->ReopenOnDemand(false);
      HostCall([&] { OnBeforeDisconnect(); });
      if (IsSet(m_bConnected)) {
        StoreLogin("", "", "", kDefaultPort, 0);
        HostCall([&] { OnDisconnect(); });
      }
      HostCall([&] { OnAfterDisconnect(); });
    } else {
      ReportTitled(*this, sites::kDisconnectLine, "TQXIP::FTPDisconnect failed!");
    }
    return ok ? 1 : 0;
  });
}

// Neither a firewall nor a proxy is supported: both answer with a failure whatever they are given.
QXBool TQXIP::FTPSetFirewall(std::uint32_t /*nKind*/, QXBool /*bFlag*/, QXHostValue /*nValue*/) {
  return GuardOperation(*this, [&]() -> QXBool {
    ReportTitled(*this, sites::kSetFirewallLine, "TQXIP::FTPSetFirewall failed!");
    return 0;
  });
}

QXBool TQXIP::FTPSetProxy(const char* /*pszProxy*/, std::uint32_t /*nValue*/) {
  return GuardOperation(*this, [&]() -> QXBool {
    ReportTitled(*this, sites::kSetProxyLine, "TQXIP::FTPSetProxy failed!");
    return 0;
  });
}
