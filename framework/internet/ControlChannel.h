// SPDX-License-Identifier: MIT
// The exchange of command lines and replies on one control connection, with the notifications 10 to 51.
// Failures are thrown as internet::Failure (12002, 12007, 12029, 12030, 12031). A failure, or a stop, between
// a command and its reply leaves the replies out of step, so it closes the connection.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/internet/FtpReply.h"
#include "framework/internet/SessionLink.h"
#include "framework/internet/Sock.h"

namespace internet {

class ControlChannel {
 public:
  // Takes the reply to a line that was sent ahead. False = the command behind it fails with that reply's
  // text.
  using ReplyHandler = std::function<bool(const FtpReply&)>;

  explicit ControlChannel(std::shared_ptr<SessionLink> session) noexcept;

  // Resolves and connects: 10, 11, 20, 21.
  void open(const std::string& server, std::uint16_t port);
  [[nodiscard]] bool isOpen() const noexcept { return sock_ != nullptr; }

  // Sends what was queued and `line` in one go (30, 31).
  void send(std::string_view line);
  // Keeps `line` back for the next send(); the reply is taken ahead of that command's own.
  void queue(std::string line, ReplyHandler handler);
  // Sends `line` now without waiting for its reply, which is taken before the next command goes out. Closes
  // the connection when it cannot take the line at once.
  void sendAhead(std::string_view line, ReplyHandler handler) noexcept;

  // The next reply (40, 41), after the handlers of what went ahead have had theirs. 12002 after `limit`.
  FtpReply reply(std::chrono::milliseconds limit);
  // The same without waiting: none when it has not come yet.
  std::optional<FtpReply> pollReply();

  // For waits on something else that end early when the server speaks.
  [[nodiscard]] platform::SocketInterest readInterest() noexcept;
  [[nodiscard]] std::optional<platform::SocketAddress> localAddress() noexcept;
  [[nodiscard]] std::optional<platform::SocketAddress> peerAddress() noexcept;

  // True when the server has closed the idle connection, or speaks unasked (421) and is thus about to.
  bool closedWhileIdle(std::chrono::milliseconds duration);

  // Closes at once, without a word.
  void drop() noexcept;
  // Sends QUIT if it can go out at once, and closes.
  void quit() noexcept;

  // Reports 50 and 51 once for a connection that was announced by 20 and is closed now.
  void reportClosed();
  void notify(std::uint32_t status, std::string text = {});
  // Requests that were answered since the last call (for notification 100).
  [[nodiscard]] bool takeAnswered() noexcept;

 private:
  std::shared_ptr<SessionLink> session_;
  std::unique_ptr<Sock> sock_;
  FtpReplyReader reader_;
  std::string queued_;
  std::deque<ReplyHandler> ahead_;  // handlers of the replies to come before the command's own
  bool settleFirst_ = false;        // a line sent ahead must be answered before the next command
  std::string aheadFailure_;
  bool announced_ = false;  // 20 was reported, 50 and 51 not yet
  bool answered_ = false;
};

}  // namespace internet
