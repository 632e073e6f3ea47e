// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Servers.h"

#include <cstdio>

#include "QXErrorInfo.h"
#include "hosts/qxftp/Outcome.h"
#include "hosts/qxftp/Printable.h"
#include "hosts/shared/Interrupt.h"
#include "hosts/shared/Library.h"
#include "hosts/shared/Passwords.h"

namespace qxftp {
namespace {

qx::Login completed(qx::Login login, const Settings& settings) {
  login.isPassive = !settings.isActive;
  login.tellsUploads = true;
  try {
    hosts::completeLogin(login, {.file = settings.passwordFile,
                                 .variable = "QXFTP_PASSWORD",
                                 .netrc = settings.netrc,
                                 .usesNetrc = !settings.ignoresNetrc});
  } catch (const hosts::NoPassword& problem) {
    throw Failure{{true, hosts::isInterrupted(), QX_ERROR_LOGIN_FAILURE, problem.what(), {}}};
  }
  return login;
}

bool movesContent(std::string_view verb) { return verb == "RETR" || verb == "STOR" || verb == "APPE"; }

}  // namespace

// "< 550 No such file". What was refused before content moved has done no harm.
void Refusal::take(std::string_view line) {
  const std::lock_guard lock(m_lock);
  if (line.starts_with("> ")) m_movesContent = movesContent(line.substr(2, 4));
  if (line.starts_with("< 1") && m_movesContent) m_text.clear();
  if (line.starts_with("< 4") || line.starts_with("< 5")) m_text = line.substr(2);
}

void Refusal::forget() {
  const std::lock_guard lock(m_lock);
  m_text.clear();
}

std::string Refusal::text() const {
  const std::lock_guard lock(m_lock);
  return m_text;
}

qx::Lambdas Servers::lambdas() {
  qx::Lambdas lambdas;
  lambdas.poll = [this](const qx::Progress& progress) {
    if (m_onProgress) m_onProgress(progress);
    return hosts::isInterrupted() ? qx::Poll::cancel : qx::Poll::goOn;
  };
  lambdas.line = [this](const char* line) {
    m_watch.take(line);
    m_refusal.take(line);
    if (std::string_view(line).starts_with("< 23")) m_hasLoggedIn = true;
    if (m_settings.isVerbose) std::fprintf(stderr, "%s\n", printable(line).c_str());
  };
  return lambdas;
}

std::unique_ptr<Servers::Entry> Servers::make() {
  if (m_exports.create == nullptr) m_exports = hosts::openLibrary(m_settings.library);
  if (!m_onInterrupt) m_onInterrupt.emplace([this] { endAll(); });
  auto made = std::make_unique<Entry>();
  need(made->client.make(m_exports, lambdas()));
  made->client.client().setRetries(m_settings.retries);
  return made;
}

Servers::Entry& Servers::keep(const std::string& key, std::unique_ptr<Entry> made) {
  const std::lock_guard lock(m_lock);
  if (hosts::isInterrupted()) made->client.end();
  return *m_entries.emplace(key, std::move(made)).first->second;
}

// On a thread of its own.
void Servers::endAll() {
  const std::lock_guard lock(m_lock);
  for (const auto& [key, entry] : m_entries) entry->client.end();
}

Servers::Entry& Servers::entry(const hosts::Address& address) {
  const std::string key = hosts::textOf({address.login, {}});
  if (const auto known = m_entries.find(key); known != m_entries.end()) return *known->second;
  std::unique_ptr<Entry> made = make();
  made->login = completed(address.login, m_settings);
  need(made->client.client().setLogin(made->login));
  return keep(key, std::move(made));
}

qx::Client& Servers::client(const hosts::Address& address) { return entry(address).client.client(); }

qx::Client& Servers::connected(const hosts::Address& address) {
  Entry& found = entry(address);
  if (!found.isConnected) need(found.client.client().connect(found.login));
  found.isConnected = true;
  return found.client.client();
}

qx::Client& Servers::anonymous() {
  const auto known = m_entries.find("");
  return (known != m_entries.end() ? *known->second : keep("", make())).client.client();
}

}  // namespace qxftp
