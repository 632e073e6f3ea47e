// SPDX-License-Identifier: MIT
// The session, connection and finder of one attempt of an operation, opened from the client's login data and
// released in order: connection closed, finder, connection, session.
#pragma once

#include <memory>

#include "Src/QXIP.h"
#include "Src/TInternetSession.h"
#include "framework/internet/FtpConnection.h"
#include "framework/internet/FtpFileFind.h"
#include "framework/internet/net/FtpErrand.h"

struct Raised;

class PrivateConnection {
 public:
  explicit PrivateConnection(TQXIP& client) noexcept : m_client(client) {}
  ~PrivateConnection() { Close(); }
  PrivateConnection(const PrivateConnection&) = delete;
  PrivateConnection& operator=(const PrivateConnection&) = delete;

  // Connects and logs in. A failure goes to OnIPError without a retry counter; *pRaised (may be null) tells
  // of it. `errand`: what comes first.
  [[nodiscard]] bool Open(const internet::FtpErrand& errand = {}, Raised* pRaised = nullptr);
  // Open(), and a finder on the connection.
  [[nodiscard]] bool OpenWithFinder(const internet::FtpErrand& errand, Raised* pRaised = nullptr);
  void Close() noexcept;

  [[nodiscard]] CFtpConnection* Connection() const noexcept { return m_connection.get(); }
  [[nodiscard]] CFtpFileFind* Finder() const noexcept { return m_finder.get(); }

 private:
  TQXIP& m_client;
  std::unique_ptr<TInternetSession> m_session;
  std::unique_ptr<CFtpConnection> m_connection;
  std::unique_ptr<CFtpFileFind> m_finder;
};

// False, with the last error 87, while the client's login data has not fitted its fields.
[[nodiscard]] bool MayLogIn(const TQXIP& client) noexcept;

// Opens a connection on `session` from the client's login data; null when that may not be (MayLogIn) or after
// a failure, which went to OnIPError.
CFtpConnection* OpenFtpConnection(TQXIP& client, CInternetSession& session, Raised* pRaised,
                                  const internet::FtpErrand& errand = {});
