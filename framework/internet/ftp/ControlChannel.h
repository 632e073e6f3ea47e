// SPDX-License-Identifier: MIT
// The exchange of command lines and replies on one control connection, with the notifications 10 to 51.
// Failures are thrown as internet::Failure (12002, 12007, 12029, 12030, 12031, 12152) and close the
// connection. Whoever leaves between a command and its reply (a stop, a failure elsewhere) drops it too:
// awaiting() tells.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/internet/ftp/FtpReply.h"
#include "framework/internet/net/Dialer.h"

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
  void queue(std::string_view line, ReplyHandler handler);
  // Sends `line` now without waiting for its reply, which is taken before the next command goes out. Closes
  // the connection when it cannot take the line at once.
  void sendAhead(std::string_view line, ReplyHandler handler) noexcept;

  // The next reply (40, 41), after the handlers of what went ahead have had theirs. A reply of 421 closes the
  // connection and counts as 12030. With `delivery` the limit counts from when the peer last took data: over
  // a slow line the system still holds megabytes of an upload when its last byte is sent.
  FtpReply reply(std::chrono::milliseconds limit, DeliveryWatch* delivery = nullptr);
  // The same without failing and without notifications: none when the reply has not come within `limit`, or
  // when the connection is closed.
  std::optional<FtpReply> tryReply(std::chrono::milliseconds limit);
  // 40 and 41 for a reply that tryReply() has taken.
  void notifyReply(const FtpReply& reply);
  // The final reply to the last command has not come yet.
  [[nodiscard]] bool awaiting() const noexcept { return awaiting_; }
  // A reply is here already, or what can be none, so readInterest() may never become ready for it.
  [[nodiscard]] bool replyReady() const noexcept { return reader_.replyReady() || reader_.broken(); }

  // For waits on something else that end early when the server speaks.
  [[nodiscard]] platform::SocketInterest readInterest() noexcept;
  [[nodiscard]] std::optional<platform::SocketAddress> localAddress() noexcept;
  [[nodiscard]] std::optional<platform::SocketAddress> peerAddress() noexcept;

  // Waits at the idle connection; true at once when it is closed, or the server is about to (421).
  bool closedWhileIdle(std::chrono::milliseconds duration);

  // Closes at once, without a word.
  void drop() noexcept;
  // Sends QUIT if it can go out at once, and closes.
  void quit() noexcept;

  // Reports 50 and 51 once for a connection that was announced by 20 and is closed now.
  void reportClosed();
  // REQUIRES: !isOpen(). The same, then 70.
  void reportEnd() noexcept { dialer_.reportEnd(); }
  // Silent on a thread that was asked to stop.
  void notify(std::uint32_t status) { dialer_.notify(status); }
  // True when a final reply was reported since the last call (for notification 100).
  [[nodiscard]] bool takeAnswered() noexcept;

 private:
  void requireOpen() const;
  void settle();
  std::string takeQueued();
  void transmit(std::string_view bytes);
  std::optional<FtpReply> nextReply(const Deadline& deadline);
  std::optional<FtpReply> nextReply(std::chrono::milliseconds limit, DeliveryWatch& delivery);
  std::optional<FtpReply> takeReply();
  bool tooMany(const FtpReply& reply) noexcept;
  void deliverAhead();
  bool receiveMore(const Deadline& deadline);
  void accept(const FtpReply& reply);
  void closeWith(std::uint32_t error, std::string serverText = {}) noexcept;

  Dialer dialer_;
  std::unique_ptr<Sock> sock_;
  FtpReplyReader reader_;
  std::string queued_;                    // whole lines, not sent yet
  std::deque<ReplyHandler> queuedAhead_;  // of the replies to these
  std::deque<ReplyHandler> ahead_;        // of the replies that are due before the command's own
  bool settleFirst_ = false;              // what was sent ahead must be answered before the next command
  std::string aheadRefusal_;
  bool awaiting_ = false;
  bool answered_ = false;
  unsigned preliminaryReplies_ = 0;  // since the last final one
  unsigned strayReplies_ = 0;        // since the last command, or the last look at an idle connection
  std::uint32_t closeError_;         // why the connection is closed, and the server's last words
  std::string closeText_;
};

}  // namespace internet
