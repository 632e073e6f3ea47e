// SPDX-License-Identifier: MIT
// The way to a server, and what the session is told of it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "framework/internet/net/ProtocolLog.h"
#include "framework/internet/net/SessionLink.h"
#include "framework/internet/net/Sock.h"

namespace internet {

class Dialer {
 public:
  explicit Dialer(std::shared_ptr<SessionLink> session) noexcept;

  // Resolves and connects, in as many attempts as the session has set: 10, 11, 20. Who called reports 21 once
  // the connection is in its place, for the callback may close it. Fails (internet::Failure) with 12007,
  // 12029, 12002.
  std::unique_ptr<Sock> connect(const std::string& server, std::uint16_t port);

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
  std::unique_ptr<Sock> attempt(const std::string& server, std::uint16_t port, const Deadline& deadline);

  std::shared_ptr<SessionLink> session_;
  ProtocolLog log_;
  bool announced_ = false;  // 20 was reported, 50 and 51 not yet
  bool muted_ = false;
};

}  // namespace internet
