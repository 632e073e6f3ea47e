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

ControlChannel::ControlChannel(std::shared_ptr<SessionLink> session) noexcept
    : dialer_(std::move(session)), progressUntil_(kAtOnce), closeError_(kConnectionAborted) {}

void ControlChannel::open(const std::string& server, std::uint16_t port) {
  closeError_ = kConnectionAborted;
  closeText_.clear();
  preliminaryReplies_ = 0;
  sock_ = dialer_.connect({"ftp", server, port});
  awaiting_ = true;  // the greeting
  progressed();
  notify(kStatusConnected);
}

void ControlChannel::secure(TlsLogin& tls) {
  requireOpen();
  if (!reader_.empty())
    closeWith(kSecureChannelFailed, "the server has sent more than it was asked for in plain text");
  requireOpen();
  const Deadline deadline(dialer_.timeouts().connect);
  sock_ = tls.secure(std::move(sock_), platform::TlsUse::control, deadline);
  log().note(tls.description());
}

void ControlChannel::send(std::string_view line) {
  if (!window_.foresees(line)) settle(line);
  notify(kStatusSendingRequest);
  requireOpen();
  awaiting_ = true;
  progressed();
  window_.command(line);
  if (window_.astray()) closeWith(kConnectionAborted);
  transmit();
  requireOpen();
  notify(kStatusRequestSent);
}

void ControlChannel::queue(std::string_view line, ReplyHandler handler) {
  window_.queue(line, std::move(handler));
}

void ControlChannel::follow(std::string_view line) {
  if (isOpen() && window_.follow(line)) transmit();
}

void ControlChannel::sendAhead(std::string_view line, ReplyHandler handler) noexcept {
  if (!isOpen()) return;
  if (awaiting_ || platform::stopRequested()) return drop();
  try {
    window_.ahead(line, std::move(handler));
    const secret::Text lines = window_.takeSendable();
    const std::string_view bytes = lines.view();
    log().sent(bytes);
    const auto sent = sock_->send(bytes.data(), bytes.size());
    if (sent.status != IoStatus::done || sent.bytes != bytes.size()) drop();
  } catch (...) {
    // Out of memory.
    drop();
  }
}

// Takes the replies that must come before `next` may go: those to lines sent ahead that it depends on, and
// any that nobody has asked for, which would otherwise be taken for the command's own.
void ControlChannel::settle(std::string_view next) {
  requireOpen();
  window_.forgetCommand();
  const Deadline deadline(dialer_.timeouts().reply);
  std::optional<FtpReply> none;
  while (!window_.idle() && !window_.canFollow(next)) {
    if (takeOne(none) || receiveMore(deadline)) continue;
    if (isOpen()) closeWith(kTimeout);
    requireOpen();
  }
  strayReplies_ = 0;
  while (const auto reply = nextReply(Deadline(kAtOnce))) {
    if (!reply->preliminary()) awaiting_ = false;
  }
  requireOpen();
}

// The lines whose turn it is.
void ControlChannel::transmit() {
  const secret::Text lines = window_.takeSendable();
  if (!lines.empty()) transmit(lines.view());
}

void ControlChannel::transmit(std::string_view bytes) {
  log().sent(bytes);
  const IoStatus status = sendAll(*sock_, bytes, Deadline(dialer_.timeouts().reply));
  if (status != IoStatus::done) closeWith(sock_->failureOf(status));
}

FtpReply ControlChannel::reply(milliseconds limit, DeliveryWatch* delivery) {
  notify(kStatusReceivingResponse);
  requireOpen();
  auto reply = delivery ? nextReply(limit, *delivery) : nextReply(Deadline(withinProgress(limit)));
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
  std::string refusal = window_.takeRefusal();
  if (!refusal.empty()) fail(kExtendedError, std::move(refusal));
}

std::optional<FtpReply> ControlChannel::nextReply(const Deadline& deadline) {
  std::optional<FtpReply> own;
  do {
    if ((own = window_.takeForeseen())) return own;
    while (takeOne(own)) {
      if (own || (own = window_.takeForeseen())) return own;
    }
  } while (receiveMore(deadline));
  return std::nullopt;
}

std::optional<FtpReply> ControlChannel::nextReply(milliseconds limit, DeliveryWatch& delivery) {
  for (Deadline deadline(withinProgress(limit)); isOpen();) {
    if (auto reply = nextReply(Deadline(std::min(deadline.left(), kWaitSlice)))) return reply;
    if (delivery.moved()) {
      progressed();
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
  log().received(reply->text);
  if (reply->code == 421) {
    closeWith(kConnectionAborted, std::move(reply->text));
  } else if (tooMany(*reply) || window_.late(*reply)) {
    closeWith(kInvalidServerResponse);
  } else {
    return reply;
  }
  return std::nullopt;
}

// A server that goes on speaking must not keep us for ever: every reply that ends nothing counts.
bool ControlChannel::tooMany(const FtpReply& reply) noexcept {
  if (!awaiting_ && window_.idle()) return ++strayReplies_ > kMaxStrayReplies;
  preliminaryReplies_ = reply.preliminary() ? preliminaryReplies_ + 1 : 0;
  return preliminaryReplies_ > kMaxPreliminaryReplies;
}

// Takes one reply that is here already; `own` when it is the command's, or nobody's. False when there is
// none.
bool ControlChannel::takeOne(std::optional<FtpReply>& own) {
  auto reply = takeReply();
  if (!reply) return false;
  doubt_.reset();
  if (!reply->preliminary()) progressed();
  const LineWindow::Packets known = window_.packets();
  own = window_.take(std::move(*reply));
  if (window_.packets() != known && onPackets_) onPackets_(window_.packets());
  if (isOpen()) transmit();
  return true;
}

// Takes what has come, else waits for it. False when the deadline has passed or the connection is closed.
bool ControlChannel::receiveMore(const Deadline& deadline) {
  if (!isOpen()) return false;
  // Where there is always more to read nothing comes to wait.
  platform::throwIfStopped();
  std::array<char, std::size_t{16} * 1024> buffer;
  const auto received = receiveSome(*sock_, buffer, nextLook(deadline));
  if (received.status == IoStatus::wouldBlock) return lookForLoss();
  if (received.status != IoStatus::done) {
    closeWith(sock_->failureOf(received.status));
  } else if (!reader_.feed({buffer.data(), received.bytes})) {
    closeWith(kInvalidServerResponse);
  }
  return isOpen();
}

// The deadline, or the moment before it at which a line that was sent along counts as late.
const Deadline& ControlChannel::nextLook(const Deadline& deadline) {
  const LineWindow::Doubt doubt = window_.doubt();
  if (doubt == LineWindow::Doubt::none) return deadline;
  if (!doubt_) {
    doubt_ = Deadline(doubt == LineWindow::Doubt::now ? kAtOnce : dialer_.timeouts().followUp);
  }
  return doubt_->left() < deadline.left() ? *doubt_ : deadline;
}

// Nothing has come. False when it is not time to ask whether something still will.
bool ControlChannel::lookForLoss() {
  if (!doubt_ || !doubt_->passed()) return false;
  doubt_.reset();
  transmit(std::string(window_.probe()) + "\r\n");
  return isOpen();
}

platform::SocketInterest ControlChannel::readInterest() noexcept {
  return sock_ ? sock_->interest(true, false) : platform::SocketInterest{};
}

platform::SocketAddress ControlChannel::localAddress() {
  requireOpen();
  return known(sock_->socket().localAddress());
}

platform::SocketAddress ControlChannel::peerAddress() {
  requireOpen();
  return known(sock_->socket().peerAddress());
}

// Of a connection that was reset the system knows no address any more.
platform::SocketAddress ControlChannel::known(const std::optional<platform::SocketAddress>& address) {
  if (!address) closeWith(kConnectionAborted);
  requireOpen();
  return *address;
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

milliseconds ControlChannel::withinProgress(milliseconds limit) const noexcept {
  return std::min(limit, progressUntil_.left());
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
  window_.clear();
  doubt_.reset();
  awaiting_ = false;
}

void ControlChannel::quit() noexcept {
  constexpr std::string_view kQuit = "QUIT\r\n";
  // Whether it arrives makes no difference: the server sees the connection end either way.
  if (isOpen() && !awaiting_ && sock_->send(kQuit.data(), kQuit.size()).status == IoStatus::done) {
    log().sent(kQuit);
  }
  drop();
}

void ControlChannel::reportClosed() {
  if (!isOpen()) dialer_.reportClosed();
}

bool ControlChannel::takeAnswered() noexcept { return std::exchange(answered_, false); }

}  // namespace internet
