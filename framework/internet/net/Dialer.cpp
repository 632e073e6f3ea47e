// SPDX-License-Identifier: MIT
#include "framework/internet/net/Dialer.h"

#include <array>
#include <string_view>
#include <utility>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/internet/net/NameLookup.h"
#include "framework/internet/net/ProxySettings.h"
#include "framework/internet/net/ServerName.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"

namespace internet {

namespace {

std::string_view troubleOf(std::uint32_t error) noexcept {
  switch (error) {
    case kNameNotResolved:
      return "Its name cannot be resolved";
    case kTimeout:
      return "It does not answer in time";
    default:
      return "It cannot be reached";
  }
}

}  // namespace

Dialer::Dialer(std::shared_ptr<SessionLink> session) noexcept
    : session_(std::move(session)), log_(session_) {}

std::unique_ptr<Sock> Dialer::connect(const platform::ProxyTarget& server) {
  server_ = server;
  const Timeouts limits = timeouts();
  for (unsigned left = limits.connectAttempts;; --left) {
    try {
      return goAnyWay(waysTo(server_, Deadline(limits.connect)));
    } catch (const Failure&) {
      if (left <= 1) throw;
    }
    reportClosed();
    platform::stoppableSleep(limits.connectBackoff);
  }
}

// By the first one that leads anywhere. What a proxy refuses is not tried behind its back.
std::unique_ptr<Sock> Dialer::goAnyWay(const std::vector<platform::Proxy>& ways) {
  for (auto way = ways.begin();;) {
    way_ = *way;
    try {
      return attempt(Deadline(timeouts().connect));
    } catch (const ProxyRefusal&) {
      throw;
    } catch (const Failure&) {
      if (++way == ways.end()) throw;
    }
    reportClosed();
  }
}

std::unique_ptr<Sock> Dialer::attempt(const Deadline& deadline) {
  if (!proxy()) return reach(server_.host, server_.port, deadline);
  log_.note("proxy " + way_.text);
  try {
    return goThroughProxy(deadline);
  } catch (const Failure& failure) {
    if (failure.ownText) throw;
    throw Failure(proxyFailure(way_, failure.error, troubleOf(failure.error)));
  }
}

std::unique_ptr<Sock> Dialer::goThroughProxy(const Deadline& deadline) {
  if (way_.kind == platform::Proxy::Kind::unsupported) {
    throw Failure(proxyFailure(way_, kCannotConnect, "Proxies of this kind are not supported"));
  }
  if (forwards()) return reach(way_.host, way_.port, deadline);
  const auto talk = talkAbout(server_.port);
  auto sock = reach(way_.host, way_.port, deadline);
  while (!talk->goOn(sock->socket())) {
    std::array interest{talk->interest(sock->socket())};
    if (!wait(interest, deadline)) fail(kTimeout);
  }
  log_.note("connected by the proxy to " + placeText(server_.host, server_.port));
  return sock;
}

std::unique_ptr<Sock> Dialer::reach(const std::string& host, std::uint16_t port, const Deadline& deadline) {
  notify(kStatusResolvingName, host);
  const auto addresses = resolve(host, port, deadline);
  notify(kStatusNameResolved, platform::addressText(addresses.front()));
  announced_ = announced_ || !muted_;
  notify(kStatusConnecting);
  auto sock = connectToAny(addresses, deadline);
  if (!sock) fail(deadline.passed() ? kTimeout : kCannotConnect);
  sock->socket().keepAlive();
  sock->socket().noDelay();
  if (const auto peer = sock->socket().peerAddress()) {
    log_.note("connected to " + placeText(platform::addressText(*peer), peer->port));
  }
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
