// SPDX-License-Identifier: MIT
// The exchange of command lines and replies on one control connection, with the notifications 10 to 51.
// Failures are thrown as internet::Failure (12002, 12007, 12029, 12030, 12031, 12152) and close the
// connection. Whoever leaves between a command and its reply (a stop, a failure elsewhere) drops it too:
// awaiting() tells.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/internet/ftp/FtpReply.h"
#include "framework/internet/ftp/LineWindow.h"
#include "framework/internet/net/Dialer.h"
#include "framework/internet/tls/TlsSock.h"

namespace internet {

// A limit for replies that are here already or count as missing.
inline constexpr std::chrono::milliseconds kAtOnce{0};

class ControlChannel {
 public:
  using ReplyHandler = LineWindow::ReplyHandler;

  explicit ControlChannel(std::shared_ptr<SessionLink> session) noexcept;

  // Resolves and connects: 10, 11, 20, 21. A closed connection can be opened again.
  void open(const std::string& server, std::uint16_t port);
  [[nodiscard]] bool isOpen() const noexcept { return sock_ != nullptr; }
  // Encrypts the open connection, or fails and closes it. What has come in plain text without having been
  // taken is a failure: anybody on the way may have put it there.
  void secure(TlsLogin& tls);

  // Sends what was queued and `line` (30, 31), unless it has gone out already: in one go, where the server
  // does not take single lines; else each as soon as the one before it is answered.
  void send(std::string_view line);
  // Keeps `line` back for the next send(); the reply is taken ahead of that command's own. It may be sent
  // twice, but the server sees it once.
  void queue(std::string_view line, ReplyHandler handler);
  // Tells that `line` will be queued or sent next, behind those that were told before: it goes out along with
  // the first of them, and nothing of it is notified before its turn. It must do no harm if its turn never
  // comes. False when it will wait for its turn.
  bool foresee(std::string_view line) { return isOpen() && window_.foresee(line); }
  [[nodiscard]] bool foresees() const noexcept { return window_.foresees(); }
  void forgetForeseen() noexcept { window_.forgetForeseen(); }
  // Sends `line` now, behind a command that runs and has had its preliminary reply, where the server is known
  // to take several at a time; its turn comes as that of one that was foreseen. It must do no harm either.
  void follow(std::string_view line);
  // Sends `line` now without waiting for its reply, which is taken before the next command goes out, or
  // before that one's own where it does not depend on it. Closes the connection when it cannot take the line
  // at once.
  void sendAhead(std::string_view line, ReplyHandler handler) noexcept;

  // The next reply (40, 41), after the handlers of what went ahead have had theirs. A reply of 421 closes the
  // connection and counts as 12030. With `delivery` the limit counts from when the peer last took data: over
  // a slow line the system still holds megabytes of an upload when its last byte is sent. It ends with
  // Timeouts::progress at the latest.
  FtpReply reply(std::chrono::milliseconds limit, DeliveryWatch* delivery = nullptr);
  // The same without failing and without notifications: none when the reply has not come within `limit`, or
  // when the connection is closed.
  std::optional<FtpReply> tryReply(std::chrono::milliseconds limit);
  // Data has moved, or a new operation begins: Timeouts::progress counts from here. So it does from each line
  // that is sent and from each final reply.
  void progressed() { progressUntil_ = Deadline(dialer_.timeouts().progress); }
  // 40 and 41 for a reply that tryReply() has taken.
  void notifyReply(const FtpReply& reply);
  // The final reply to the last command has not come yet.
  [[nodiscard]] bool awaiting() const noexcept { return awaiting_; }
  // A reply is here already, or what can be none, so readInterest() may never become ready for it.
  [[nodiscard]] bool replyReady() const noexcept { return reader_.replyReady() || reader_.broken(); }

  // The proxy that it goes through, if any, which every other connection to the server goes through as well;
  // see Dialer.h.
  [[nodiscard]] const platform::Proxy* proxy() const noexcept { return dialer_.proxy(); }
  [[nodiscard]] std::unique_ptr<ProxyTalk> talkAbout(std::uint16_t port) const {
    return dialer_.talkAbout(port);
  }

  // Where the lines of this connection are told.
  [[nodiscard]] ProtocolLog& log() noexcept { return dialer_.log(); }
  // The server is known to take single lines.
  void sendSingly() noexcept { window_.sendSingly(); }
  // Called when more is known of how the server takes several lines in one packet.
  void onPackets(std::function<void(LineWindow::Packets)> learn) noexcept { onPackets_ = std::move(learn); }

  // For waits on something else that end early when the server speaks.
  [[nodiscard]] platform::SocketInterest readInterest() noexcept;
  [[nodiscard]] platform::SocketAddress localAddress();
  [[nodiscard]] platform::SocketAddress peerAddress();

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
  [[nodiscard]] bool answered() const noexcept { return answered_; }

  // While it lives nothing is reported, and no reply counts as one that was.
  class Silence {
   public:
    explicit Silence(ControlChannel& channel) noexcept : channel_(channel), answered_(channel.answered_) {
      channel_.dialer_.mute(true);
    }
    ~Silence() {
      channel_.dialer_.mute(false);
      channel_.answered_ = answered_;
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

   private:
    ControlChannel& channel_;
    const bool answered_;
  };

 private:
  void requireOpen() const;
  [[nodiscard]] std::chrono::milliseconds withinProgress(std::chrono::milliseconds limit) const noexcept;
  platform::SocketAddress known(const std::optional<platform::SocketAddress>& address);
  void settle(std::string_view next);
  void transmit();
  void transmit(std::string_view bytes);
  std::optional<FtpReply> nextReply(const Deadline& deadline);
  std::optional<FtpReply> nextReply(std::chrono::milliseconds limit, DeliveryWatch& delivery);
  std::optional<FtpReply> takeReply();
  bool tooMany(const FtpReply& reply) noexcept;
  bool takeOne(std::optional<FtpReply>& own);
  bool receiveMore(const Deadline& deadline);
  const Deadline& nextLook(const Deadline& deadline);
  bool lookForLoss();
  void accept(const FtpReply& reply);
  void closeWith(std::uint32_t error, std::string serverText = {}) noexcept;
  void closeWith(Failure failure) noexcept { closeWith(failure.error, std::move(failure.serverText)); }

  Dialer dialer_;
  std::unique_ptr<Sock> sock_;
  FtpReplyReader reader_;
  LineWindow window_;
  Deadline progressUntil_;
  std::optional<Deadline> doubt_;  // when a line that was sent along counts as late
  std::function<void(LineWindow::Packets)> onPackets_;
  bool awaiting_ = false;
  bool answered_ = false;
  unsigned preliminaryReplies_ = 0;  // since the last final one
  unsigned strayReplies_ = 0;        // since the last command, or the last look at an idle connection
  std::uint32_t closeError_;         // why the connection is closed, and the server's last words
  std::string closeText_;
};

}  // namespace internet
