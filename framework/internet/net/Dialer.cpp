// SPDX-License-Identifier: MIT
#include "framework/internet/net/Dialer.h"

#include <utility>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/internet/net/NameLookup.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"

namespace internet {

namespace {

std::string endpointText(const platform::SocketAddress& address) {
  const std::string host = addressText(address);
  return (address.v6 ? '[' + host + ']' : host) + ':' + std::to_string(address.port);
}

}  // namespace

Dialer::Dialer(std::shared_ptr<SessionLink> session) noexcept
    : session_(std::move(session)), log_(session_) {}

std::unique_ptr<Sock> Dialer::connect(const std::string& server, std::uint16_t port) {
  const Timeouts limits = timeouts();
  for (unsigned left = limits.connectAttempts;; --left) {
    try {
      return attempt(server, port, Deadline(limits.connect));
    } catch (const Failure&) {
      if (left <= 1) throw;
    }
    reportClosed();
    platform::stoppableSleep(limits.connectBackoff);
  }
}

std::unique_ptr<Sock> Dialer::attempt(const std::string& server, std::uint16_t port,
                                      const Deadline& deadline) {
  notify(kStatusResolvingName, server);
  const auto addresses = resolve(server, port, deadline);
  notify(kStatusNameResolved, platform::addressText(addresses.front()));
  announced_ = announced_ || !muted_;
  notify(kStatusConnecting);
  auto sock = connectToAny(addresses, deadline);
  if (!sock) fail(deadline.passed() ? kTimeout : kCannotConnect);
  sock->socket().keepAlive();
  sock->socket().noDelay();
  if (const auto peer = sock->socket().peerAddress()) log_.note("connected to " + endpointText(*peer));
  return sock;
}

void Dialer::reportClosed() {
  if (muted_ || !std::exchange(announced_, false)) return;
  notify(kStatusClosing);
  notify(kStatusClosed);
}

void Dialer::reportEnd() noexcept {
  const platform::LastErrorKeeper keeper;
  try {
    reportClosed();
    notify(kStatusHandleClosing);
  } catch (...) {
    // A callback's exception (a stop among them) must not leave a destructor. A stop is noticed at the next
    // wait.
  }
}

void Dialer::notify(std::uint32_t status, std::string text) {
  if (platform::stopRequested()) return;
  const auto session = session_;
  const bool muted = muted_;
  log_.deliver();
  // A host may have ended the operation on hearing the log.
  if (muted || platform::stopRequested()) return;
  if (text.empty()) {
    session->notify(status, nullptr, 0);
  } else {
    session->notify(status, text.data(), static_cast<std::uint32_t>(text.size() + 1));
  }
}

}  // namespace internet
