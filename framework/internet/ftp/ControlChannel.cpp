// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/ControlChannel.h"

#include <algorithm>
#include <array>
#include <utility>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/stop_token.h"

namespace internet {

using platform::IoStatus;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds kAtOnce{0};

}  // namespace

ControlChannel::ControlChannel(std::shared_ptr<SessionLink> session) noexcept
    : dialer_(std::move(session)), closeError_(kConnectionAborted) {}

void ControlChannel::open(const std::string& server, std::uint16_t port) {
  sock_ = dialer_.connect(server, port);
  awaiting_ = true;  // the greeting
  notify(kStatusConnected);
}

void ControlChannel::send(std::string_view line) {
  settle();
  notify(kStatusSendingRequest);
  requireOpen();
  std::string bytes = takeQueued();
  bytes.append(line).append("\r\n");
  awaiting_ = true;
  transmit(bytes);
  notify(kStatusRequestSent);
}

void ControlChannel::queue(std::string_view line, ReplyHandler handler) {
  queuedAhead_.push_back(std::move(handler));
  queued_.append(line).append("\r\n");
}

// The queued lines, about to be sent: their replies are due from here on.
std::string ControlChannel::takeQueued() {
  for (ReplyHandler& handler : queuedAhead_) ahead_.push_back(std::move(handler));
  queuedAhead_.clear();
  return std::exchange(queued_, {});
}

void ControlChannel::sendAhead(std::string_view line, ReplyHandler handler) noexcept {
  if (!isOpen()) return;
  if (awaiting_ || platform::stopRequested()) return drop();
  try {
    queue(line, std::move(handler));
    const std::string bytes = takeQueued();
    const auto sent = sock_->send(bytes.data(), bytes.size());
    if (sent.status != IoStatus::done || sent.bytes != bytes.size()) return drop();
    settleFirst_ = true;
  } catch (...) {
    // Out of memory.
    drop();
  }
}

// Takes the replies that must come before the next command may go: those to lines sent ahead, and any that
// nobody has asked for, which would otherwise be taken for the command's own.
void ControlChannel::settle() {
  requireOpen();
  const Deadline deadline(dialer_.timeouts().reply);
  for (;;) {
    if (settleFirst_) deliverAhead();
    if (!settleFirst_) break;
    if (!receiveMore(deadline)) {
      if (isOpen()) closeWith(kTimeout);
      requireOpen();
    }
  }
  strayReplies_ = 0;
  while (const auto reply = nextReply(Deadline(kAtOnce))) {
    if (!reply->preliminary()) awaiting_ = false;
  }
  requireOpen();
}

void ControlChannel::transmit(std::string_view bytes) {
  const IoStatus status = sendAll(*sock_, bytes, Deadline(dialer_.timeouts().reply));
  if (status != IoStatus::done) closeWith(errorOf(status));
  requireOpen();
}

FtpReply ControlChannel::reply(milliseconds limit, DeliveryWatch* delivery) {
  notify(kStatusReceivingResponse);
  requireOpen();
  auto reply = delivery ? nextReply(limit, *delivery) : nextReply(Deadline(limit));
  if (!reply) {
    if (isOpen()) closeWith(kTimeout);
    requireOpen();
  }
  notify(kStatusResponseReceived);
  answered_ = answered_ || !reply->preliminary();
  accept(*reply);
  return std::move(*reply);
}

std::optional<FtpReply> ControlChannel::tryReply(milliseconds limit) {
  auto reply = nextReply(Deadline(limit));
  if (reply) accept(*reply);
  return reply;
}

void ControlChannel::notifyReply(const FtpReply& reply) {
  notify(kStatusReceivingResponse);
  notify(kStatusResponseReceived);
  answered_ = answered_ || !reply.preliminary();
}

void ControlChannel::accept(const FtpReply& reply) {
  awaiting_ = isOpen() && reply.preliminary();
  if (!aheadRefusal_.empty()) fail(kExtendedError, std::exchange(aheadRefusal_, {}));
}

std::optional<FtpReply> ControlChannel::nextReply(const Deadline& deadline) {
  do {
    deliverAhead();
    if (!ahead_.empty()) continue;
    if (auto reply = takeReply()) return reply;
  } while (receiveMore(deadline));
  return std::nullopt;
}

std::optional<FtpReply> ControlChannel::nextReply(milliseconds limit, DeliveryWatch& delivery) {
  for (Deadline deadline(limit); isOpen();) {
    if (auto reply = nextReply(Deadline(std::min(deadline.left(), kWaitSlice)))) return reply;
    if (delivery.moved()) {
      deadline = Deadline(limit);
    } else if (deadline.passed()) {
      break;
    }
  }
  return std::nullopt;
}

std::optional<FtpReply> ControlChannel::takeReply() {
  auto reply = reader_.take();
  if (!reply) {
    if (reader_.broken()) closeWith(kInvalidServerResponse);
    return std::nullopt;
  }
  if (reply->code == 421) {
    closeWith(kConnectionAborted, std::move(reply->text));
  } else if (tooMany(*reply)) {
    closeWith(kInvalidServerResponse);
  } else {
    return reply;
  }
  return std::nullopt;
}

// A server that goes on speaking must not keep us for ever: every reply that ends nothing counts.
bool ControlChannel::tooMany(const FtpReply& reply) noexcept {
  if (!awaiting_ && ahead_.empty()) return ++strayReplies_ > kMaxStrayReplies;
  preliminaryReplies_ = reply.preliminary() ? preliminaryReplies_ + 1 : 0;
  return preliminaryReplies_ > kMaxPreliminaryReplies;
}

void ControlChannel::deliverAhead() {
  while (!ahead_.empty()) {
    const auto reply = takeReply();
    if (!reply) return;
    if (reply->preliminary()) continue;
    const ReplyHandler handler = std::move(ahead_.front());
    ahead_.pop_front();
    if (!handler(*reply) && aheadRefusal_.empty()) aheadRefusal_ = reply->text;
  }
  settleFirst_ = false;
}

// Takes what has come, else waits for it. False when the deadline has passed or the connection is closed.
bool ControlChannel::receiveMore(const Deadline& deadline) {
  if (!isOpen()) return false;
  // Where there is always more to read nothing comes to wait.
  platform::throwIfStopped();
  std::array<char, std::size_t{16} * 1024> buffer;
  const auto received = receiveSome(*sock_, buffer, deadline);
  if (received.status == IoStatus::wouldBlock) return false;
  if (received.status != IoStatus::done) {
    closeWith(errorOf(received.status));
  } else if (!reader_.feed({buffer.data(), received.bytes})) {
    closeWith(kInvalidServerResponse);
  }
  return isOpen();
}

platform::SocketInterest ControlChannel::readInterest() noexcept {
  return {sock_ ? &sock_->socket() : nullptr, true, false};
}

std::optional<platform::SocketAddress> ControlChannel::localAddress() noexcept {
  return sock_ ? sock_->socket().localAddress() : std::nullopt;
}

std::optional<platform::SocketAddress> ControlChannel::peerAddress() noexcept {
  return sock_ ? sock_->socket().peerAddress() : std::nullopt;
}

bool ControlChannel::closedWhileIdle(milliseconds duration) {
  if (awaiting_) {
    // A transfer runs: its reply is not for us.
    platform::stoppableSleep(duration);
    return !isOpen();
  }
  strayReplies_ = 0;
  const Deadline deadline(duration);
  while (isOpen() && nextReply(deadline)) {
  }
  return !isOpen();
}

void ControlChannel::requireOpen() const {
  if (!isOpen()) fail(closeError_, closeText_);
}

void ControlChannel::closeWith(std::uint32_t error, std::string serverText) noexcept {
  closeError_ = error;
  closeText_ = std::move(serverText);
  drop();
}

void ControlChannel::drop() noexcept {
  sock_.reset();
  reader_ = {};
  queued_.clear();
  queuedAhead_.clear();
  ahead_.clear();
  aheadRefusal_.clear();
  settleFirst_ = false;
  awaiting_ = false;
}

void ControlChannel::quit() noexcept {
  constexpr std::string_view kQuit = "QUIT\r\n";
  // Whether it arrives makes no difference: the server sees the connection end either way.
  if (isOpen() && !awaiting_) static_cast<void>(sock_->send(kQuit.data(), kQuit.size()));
  drop();
}

void ControlChannel::reportClosed() {
  if (!isOpen()) dialer_.reportClosed();
}

bool ControlChannel::takeAnswered() noexcept { return std::exchange(answered_, false); }

}  // namespace internet
