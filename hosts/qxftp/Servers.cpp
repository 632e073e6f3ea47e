// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Servers.h"

#include <cstdio>

#include "hosts/qxftp/Outcome.h"
#include "hosts/qxftp/Printable.h"
#include "hosts/shared/Interrupt.h"
#include "hosts/shared/Library.h"

namespace qxftp {
namespace {

qx::Lambdas lambdasOf(const Settings& settings) {
  qx::Lambdas lambdas;
  lambdas.poll = [](const qx::Progress&) {
    return hosts::isInterrupted() ? qx::Poll::cancel : qx::Poll::goOn;
  };
  if (settings.isVerbose) {
    lambdas.line = [](const char* line) { std::fprintf(stderr, "%s\n", printable(line).c_str()); };
  }
  return lambdas;
}

}  // namespace

qx::Client Servers::makeClient() {
  if (m_exports.create == nullptr) m_exports = hosts::openLibrary(m_settings.library);
  auto client = qx::Client::make(m_exports).value();
  client.use(lambdasOf(m_settings));
  client.setRetries(m_settings.retries);
  return client;
}

Servers::Entry& Servers::entry(const hosts::Address& address) {
  const std::string key = hosts::textOf({address.login, {}});
  if (const auto known = m_entries.find(key); known != m_entries.end()) return known->second;
  qx::Login login = address.login;
  login.isPassive = !m_settings.isActive;
  Entry made{makeClient(), login};
  need(made.client.setLogin(login));
  return m_entries.emplace(key, std::move(made)).first->second;
}

qx::Client& Servers::client(const hosts::Address& address) { return entry(address).client; }

qx::Client& Servers::connected(const hosts::Address& address) {
  Entry& found = entry(address);
  if (!found.isConnected) need(found.client.connect(found.login));
  found.isConnected = true;
  return found.client;
}

qx::Client& Servers::anonymous() {
  return m_entries.try_emplace("", Entry{makeClient(), {}}).first->second.client;
}

}  // namespace qxftp
