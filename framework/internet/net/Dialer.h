// SPDX-License-Identifier: MIT
// The way to a server, be it through a proxy that the system's settings name, and what the session is told of
// it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "framework/internet/net/ProtocolLog.h"
#include "framework/internet/net/ProxyTalk.h"
#include "framework/internet/net/SessionLink.h"
#include "framework/internet/net/Sock.h"
#include "framework/platform/proxies.h"

namespace internet {

class Dialer {
 public:
  explicit Dialer(std::shared_ptr<SessionLink> session) noexcept;

  // Resolves and connects, in as many attempts as the session has set: 10, 11, 20. Who called reports 21 once
  // the connection is in its place, for the callback may close it. Fails (internet::Failure) with 12007,
  // 12029, 12002. With a proxy 10 and 11 tell of that one, which resolves the server's name; of several each
  // is tried, with a time limit of its own, until one can be reached. Where it refuses: 12029 with its words.
  std::unique_ptr<Sock> connect(const platform::ProxyTarget& server);

  // Of the last connection. Null: it goes straight to the server.
  [[nodiscard]] const platform::Proxy* proxy() const noexcept {
    return way_.kind == platform::Proxy::Kind::direct ? nullptr : &way_;
  }
  // The connection is one to an HTTP proxy that wants whole addresses in requests.
  [[nodiscard]] bool forwards() const noexcept {
    return way_.kind == platform::Proxy::Kind::http && server_.scheme == "http";
  }
  // For one more connection to the last one's proxy, about a port of the same server. REQUIRES: proxy().
  [[nodiscard]] std::unique_ptr<ProxyTalk> talkAbout(std::uint16_t port) const {
    return makeProxyTalk(way_, server_.host, port);
  }

  // Reports 50 and 51, once, for a connection that was announced by 20. Call it when that is closed.
  void reportClosed();
  // The last words of what was made on the session: 50 and 51 as above, then 70. Keeps the last error.
  void reportEnd() noexcept;
  // Hands on what the log has kept, then reports. Silent on a thread that was asked to stop.
  void notify(std::uint32_t status, std::string text = {});
  // While muted nothing is reported but the log, and what stands announced or closed stays as it was.
  void mute(bool muted) noexcept { muted_ = muted; }

  [[nodiscard]] ProtocolLog& log() noexcept { return log_; }
  [[nodiscard]] Timeouts timeouts() const noexcept { return session_->timeouts(); }

 private:
  std::unique_ptr<Sock> attempt(const Deadline& deadline);
  std::unique_ptr<Sock> goAnyWay(const std::vector<platform::Proxy>& ways);
  std::unique_ptr<Sock> goThroughProxy(const Deadline& deadline);
  std::unique_ptr<Sock> reach(const std::string& host, std::uint16_t port, const Deadline& deadline);

  std::shared_ptr<SessionLink> session_;
  platform::ProxyTarget server_;  // that was asked for last
  platform::Proxy way_;           // to it
  ProtocolLog log_;
  bool announced_ = false;  // 20 was reported, 50 and 51 not yet
  bool muted_ = false;
};

}  // namespace internet
