// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Outcome.h"

#include <algorithm>
#include <array>

#include "QXErrorInfo.h"
#include "hosts/shared/Interrupt.h"

namespace qxftp {

void fail(const std::string& text) { throw Failure{{true, false, 0, text, {}}}; }

void need(const hosts::Outcome& outcome) {
  const bool isCancelled = outcome.state == hosts::Outcome::State::cancelled;
  if (!outcome) throw Failure{{true, isCancelled, outcome.number, outcome.text, {}}};
}

qx::Report withWhatIsLeft(qx::Report report, const std::string& left) {
  if (!report.isCancelled && !hosts::isInterrupted()) return report;
  report.isCancelled = true;
  report.text = "cancelled; " + left;
  return report;
}

bool isNoConnection(const qx::Report& report, bool hasLoggedIn) {
  static constexpr std::array<std::uint32_t, 11> kNumbers = {
      QX_ERROR_NAME_NOT_RESOLVED,   QX_ERROR_INCORRECT_PASSWORD,    QX_ERROR_LOGIN_FAILURE,
      QX_ERROR_CANNOT_CONNECT,      QX_ERROR_CERTIFICATE_DATE,      QX_ERROR_CERTIFICATE_NAME,
      QX_ERROR_CLIENT_CERTIFICATE,  QX_ERROR_CERTIFICATE_AUTHORITY, QX_ERROR_SECURE_CHANNEL,
      QX_ERROR_CERTIFICATE_INVALID, QX_ERROR_CERTIFICATE_REVOKED};
  static constexpr std::array<std::uint32_t, 3> kBeforeLogin = {QX_ERROR_TIMEOUT, QX_ERROR_CONNECTION_ABORTED,
                                                                QX_ERROR_CONNECTION_RESET};
  const auto isOne = [&](const auto& numbers) {
    return std::ranges::find(numbers, report.number) != numbers.end();
  };
  return isOne(kNumbers) || (!hasLoggedIn && isOne(kBeforeLogin));
}

void Tally::addFailure(const qx::Report& report, bool hasLoggedIn) {
  ++m_failed;
  if (isNoConnection(report, hasLoggedIn)) ++m_notConnected;
  if (report.isCancelled) m_isCancelled = true;
}

ExitCode Tally::exitCode() const {
  if (m_isCancelled) return kCancelled;
  if (m_failed == 0) return m_no == 0 ? kDone : kAnswerIsNo;
  if (m_done + m_no > 0) return kPartlyFailed;
  return m_notConnected == m_failed ? kNoConnection : kFailed;
}

}  // namespace qxftp
