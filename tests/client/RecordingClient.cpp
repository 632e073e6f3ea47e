// SPDX-License-Identifier: MIT
#include "tests/client/RecordingClient.h"

RecordingClient::RecordingClient(QXErrorInfo* pErrorInfo, QXBool bOption) : TQXIP(pErrorInfo, bOption) {}

RecordingClient::~RecordingClient() = default;

std::vector<std::string> RecordingClient::calls() const {
  const std::lock_guard lock(m_mutex);
  std::vector<std::string> names;
  for (const Call& call : m_calls) names.push_back(call.name);
  return names;
}

std::vector<std::string> RecordingClient::messages() const {
  const std::lock_guard lock(m_mutex);
  std::vector<std::string> texts;
  for (const Call& call : m_calls) texts.push_back(call.message);
  return texts;
}

std::size_t RecordingClient::count(const std::string& hook) const {
  std::size_t found = 0;
  for (const std::string& call : calls()) found += call.starts_with(hook) ? 1u : 0u;
  return found;
}

std::string RecordingClient::messageAt(const std::string& hook) const {
  const std::lock_guard lock(m_mutex);
  for (const Call& call : m_calls) {
    if (call.name.starts_with(hook)) return call.message;
  }
  return {};
}

void RecordingClient::forget() {
  const std::lock_guard lock(m_mutex);
  m_calls.clear();
}

void RecordingClient::note(std::string call) {
  const std::lock_guard lock(m_mutex);
  m_calls.push_back({std::move(call), m_szMessage});
}

QXBool RecordingClient::OnBeforeDisconnect() {
  note("OnBeforeDisconnect");
  return TQXIP::OnBeforeDisconnect();
}

QXBool RecordingClient::OnAfterDisconnect() {
  note("OnAfterDisconnect");
  return TQXIP::OnAfterDisconnect();
}

void RecordingClient::OnIPError(std::uint32_t nError, const char* pszText, std::uint32_t* pRetries) {
  note("OnIPError " + std::to_string(nError) + " " + (pszText != nullptr ? pszText : "(null)") +
       (pRetries != nullptr ? " retries " + std::to_string(*pRetries) : ""));
  TQXIP::OnIPError(nError, pszText, pRetries);
}

void RecordingClient::OnConnect() {
  note("OnConnect");
  if (connected) connected();
  TQXIP::OnConnect();
}

void RecordingClient::OnDisconnect() {
  note("OnDisconnect");
  if (disconnected) disconnected();
  TQXIP::OnDisconnect();
}

void RecordingClient::OnSuccess() {
  note("OnSuccess");
  TQXIP::OnSuccess();
}

void RecordingClient::OnNotify(QXHostValue nValue) {
  note("OnNotify");
  if (notified) notified(nValue);
  TQXIP::OnNotify(nValue);
}

QXBool RecordingClient::OnPoll(QXHostValue nPollArg1, QXHostValue nPollArg2, QXHostValue nTransfer,
                               QXBool* pbReconnect) {
  if (poll) return poll(nPollArg1, nPollArg2, nTransfer, pbReconnect);
  return TQXIP::OnPoll(nPollArg1, nPollArg2, nTransfer, pbReconnect);
}

void RecordingClient::OnStatusText(const char* pszText) {
  statusTexts.emplace_back(pszText);
  TQXIP::OnStatusText(pszText);
}

QXBool RecordingClient::FTPReConnect(std::uint32_t nRetries, QXHostValue nValue) {
  note("FTPReConnect " + std::to_string(nRetries) + " " + std::to_string(nValue));
  return TQXIP::FTPReConnect(nRetries, nValue);
}

CFtpFileFind* RecordingClient::GetFinder(QXHostValue nReserved, const char* pszName) {
  note(std::string("GetFinder ") + (pszName != nullptr ? pszName : "(null)"));
  return finder != nullptr ? finder : TQXIP::GetFinder(nReserved, pszName);
}
