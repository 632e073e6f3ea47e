// SPDX-License-Identifier: MIT
#include "framework/internet/InternetSession.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/internet/FtpConnection.h"
#include "framework/internet/HttpConnection.h"
#include "framework/internet/Raising.h"
#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/http/HttpSite.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/internet/net/SessionLink.h"
#include "framework/internet/tls/SecureHost.h"
#include "framework/platform/last_error.h"
#include "framework/platform/process.h"

using internet::FtpControl;

namespace {

// What sessions start with; locked, for operations make sessions on their workers.
struct StartingTimeouts {
  std::mutex mutex;
  internet::Timeouts value;
};

StartingTimeouts& startingTimeouts() {
  static StartingTimeouts instance;
  return instance;
}

internet::Timeouts timeoutsToStartWith() {
  const std::lock_guard lock(startingTimeouts().mutex);
  return startingTimeouts().value;
}

}  // namespace

void internet::setTimeoutsForTesting(const Timeouts& timeouts) {
  const std::lock_guard lock(startingTimeouts().mutex);
  startingTimeouts().value = timeouts;
}

struct CInternetSession::Impl final : internet::SessionLink {
  void notify(std::uint32_t status, void* information, std::uint32_t length) override {
    // The callback may delete the session: nothing of it is touched afterwards.
    if (owner && callbackEnabled) owner->OnStatusCallback(context, status, information, length);
  }
  [[nodiscard]] internet::Timeouts timeouts() const noexcept override { return currentTimeouts; }
  [[nodiscard]] bool wantsProtocol() const noexcept override { return owner && owner->WantsProtocol(); }
  void protocolLine(const char* line) override {
    if (owner) owner->OnProtocolLine(line);
  }

  CInternetSession* owner = nullptr;  // null after the session's end
  std::uintptr_t context = 1;
  bool callbackEnabled = false;
  internet::Timeouts currentTimeouts = timeoutsToStartWith();
  std::vector<std::weak_ptr<internet::SessionMember>> members;  // that may still be open

  void adopt(const std::shared_ptr<internet::SessionMember>& member) {
    std::erase_if(members, [](const auto& known) { return known.expired(); });
    members.push_back(member);
  }
};

namespace {

std::string_view checkedText(const char* text, const char* ifEmpty) {
  const std::string_view result = text && *text ? text : ifEmpty;
  if (!result.empty()) FtpControl::checkArgument(result);
  return result;
}

// Hosts hand in the port of plain FTP where they know no better.
std::uint16_t portOf(const internet::TlsPolicy& tls, std::uint16_t port) noexcept {
  if (tls.encryption == internet::Encryption::fromStart && (port == 0 || port == internet::kDefaultFtpPort)) {
    return internet::kDefaultFtpsPort;
  }
  return port ? port : internet::kDefaultFtpPort;
}

internet::FtpLogin checkedLogin(const char* server, const char* user, const char* password,
                                std::uint16_t port, bool passive) {
  FtpControl::checkArgument(server ? std::string_view(server) : "");
  const internet::SecureHost host = internet::parseFtpHost(server);
  const bool anonymous = !user || !*user;
  return {host.name,
          portOf(host.policy, port),
          std::string(checkedText(user, "anonymous")),
          secret::Text(checkedText(password, anonymous ? "anonymous@" : "")),
          passive,
          host.policy,
          host.tellsUploads};
}

}  // namespace

CInternetSession::CInternetSession(const char*, std::uintptr_t context, std::uint32_t, const char*,
                                   const char*, std::uint32_t)
    : m_impl(std::make_shared<Impl>()) {
  m_impl->owner = this;
  m_impl->context = context;
}

CInternetSession::~CInternetSession() {
  CInternetSession::Close();
  m_impl->owner = nullptr;
}

bool CInternetSession::EnableStatusCallback(bool enable) noexcept {
  m_impl->callbackEnabled = enable;
  return true;
}

CFtpConnection* CInternetSession::GetFtpConnection(const char* server, const char* user, const char* password,
                                                   std::uint16_t port, bool passive,
                                                   const internet::FtpErrand& errand) {
  std::unique_ptr<CFtpConnection> connection;
  internet::raising([&, impl = m_impl] {
    auto login = checkedLogin(server, user, password, port, passive);
    if (!platform::startSockets()) internet::fail(platform::lastError());
    const auto control = FtpControl::open(impl, std::move(login), errand);
    impl->adopt(control);
    connection.reset(new CFtpConnection(control));
    control->channel().notify(internet::kStatusHandleCreated);
  });
  return connection.release();
}

CHttpConnection* CInternetSession::GetHttpConnection(const char* server, std::uint16_t port, const char*,
                                                     const char*) {
  std::unique_ptr<CHttpConnection> connection;
  internet::raising([&, impl = m_impl] {
    if (!server || !*server) internet::fail(platform::kErrorInvalidParameter);
    const internet::SecureHost host = internet::parseHttpHost(server);
    const bool encrypted = host.policy.encryption != internet::Encryption::none;
    const std::uint16_t usual = encrypted ? internet::kDefaultHttpsPort : internet::kDefaultHttpPort;
    const auto site = std::make_shared<internet::HttpSite>(
        impl, internet::HttpServer{host.name, port ? port : usual, host.policy});
    impl->adopt(site);
    connection.reset(new CHttpConnection(site));
    site->notify(internet::kStatusHandleCreated);
  });
  return connection.release();
}

bool CInternetSession::SetOption(std::uint32_t option, std::uint32_t value) noexcept {
  internet::Timeouts& timeouts = m_impl->currentTimeouts;
  switch (option) {
    case internet::kOptionConnectTimeout:
      timeouts.connect = std::chrono::milliseconds(value);
      return true;
    case internet::kOptionConnectRetries:
      timeouts.connectAttempts = value;
      return true;
    case internet::kOptionConnectBackoff:
      timeouts.connectBackoff = std::chrono::milliseconds(value);
      return true;
    default:
      platform::setLastError(platform::kErrorInvalidParameter);
      return false;
  }
}

void CInternetSession::Close() noexcept {
  // Taken out first: a notification may close or delete the session again.
  const auto members = std::exchange(m_impl->members, {});
  for (const auto& known : members) {
    if (const auto member = known.lock()) member->close();
  }
}

void CInternetSession::SetTimeouts(const internet::Timeouts& timeouts) noexcept {
  m_impl->currentTimeouts = timeouts;
}

const internet::Timeouts& CInternetSession::GetTimeouts() const noexcept { return m_impl->currentTimeouts; }

std::uintptr_t CInternetSession::GetContext() const noexcept { return m_impl->context; }

void CInternetSession::OnStatusCallback(std::uintptr_t, std::uint32_t, void*, std::uint32_t) {}

bool CInternetSession::WantsProtocol() const noexcept { return false; }

void CInternetSession::OnProtocolLine(const char*) {}
