// SPDX-License-Identifier: MIT
#include "Src/PrivateConnection.h"

#include "Src/InternetGuard.h"
#include "framework/platform/last_error.h"

bool MayLogIn(const TQXIP& client) noexcept {
  if (client.LoginFits()) return true;
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}

CFtpConnection* OpenFtpConnection(TQXIP& client, CInternetSession& session, Raised* pRaised,
                                  const internet::FtpErrand& errand) {
  if (!MayLogIn(client)) return nullptr;
  const LoginTexts login = client.Login();
  return GuardInternet(client, nullptr, pRaised, [&] {
    return session.GetFtpConnection(login.host, login.user, login.password,
                                    static_cast<std::uint16_t>(client.m_nPort), client.m_bPassive != 0,
                                    errand);
  });
}

bool PrivateConnection::Open(const internet::FtpErrand& errand, Raised* pRaised) {
  constexpr unsigned kCrowdedRetries = 3;
  m_session.reset(NewSession(m_client));
  // Such a connection comes on top of others: a server may have too many for a moment.
  auto timeouts = m_session->GetTimeouts();
  timeouts.crowdedRetries = kCrowdedRetries;
  m_session->SetTimeouts(timeouts);
  m_connection.reset(OpenFtpConnection(m_client, *m_session, pRaised, errand));
  return m_connection != nullptr;
}

bool PrivateConnection::OpenWithFinder(const internet::FtpErrand& errand, Raised* pRaised) {
  if (!Open(errand, pRaised)) return false;
  m_finder = std::make_unique<CFtpFileFind>(m_connection.get(), 1);
  return true;
}

void PrivateConnection::Close() noexcept {
  if (m_connection) m_connection->Close();
  m_finder.reset();
  m_connection.reset();
  m_session.reset();
}
