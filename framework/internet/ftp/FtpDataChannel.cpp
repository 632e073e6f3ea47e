// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FtpDataChannel.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/stop_token.h"

namespace internet {

using platform::IoStatus;
using std::chrono::milliseconds;

namespace {

platform::SocketAddress required(const std::optional<platform::SocketAddress>& address) {
  if (!address) fail(kConnectionAborted);
  return *address;
}

std::string extendedPortArgument(const platform::SocketAddress& address) {
  return std::string(address.v6 ? "|2|" : "|1|") + addressText(address) + '|' + std::to_string(address.port) +
         '|';
}

std::string portArgument(const platform::SocketAddress& address) {
  std::string text;
  for (std::size_t i = 0; i < 4; ++i) text += std::to_string(address.host[i]) + ',';
  return text + std::to_string(address.port >> 8) + ',' + std::to_string(address.port & 0xff);
}

// Servers and the ways to them forbid EPSV and EPRT by any code, not only by those of an unknown command.
bool forbidden(const FtpReply& reply) noexcept { return reply.code >= 500; }

bool replied(const FtpDataChannel::Opening& opening) noexcept { return opening.first.code != 0; }

void note(FtpDataChannel::Opening& opening, const FtpReply& reply) {
  if (!reply.preliminary()) {
    opening.final = reply;
  } else if (const auto size = parseAnnouncedSize(reply.text)) {
    opening.announced = size;
  }
}

// The data connection cannot be made: the control connection says why, by a reply or by its end, within
// Timeouts::dataError. It is closed where it says nothing, for its replies are out of step then.
[[noreturn]] void failWithReason(FtpControl& control, const Failure& failure) {
  ControlChannel& channel = control.channel();
  const Deadline deadline(control.timeouts().dataError);
  while (channel.awaiting()) {
    const auto reply = channel.tryReply(deadline.left());
    if (!reply) {
      if (!channel.isOpen() && failure.serverText.empty())
        channel.reply(kAtOnce);  // the server has left: fails with that
      channel.drop();
    } else if (reply->refused()) {
      control.freshTlsRefused(*reply);
      control.raise(*reply);
    }
  }
  throw Failure(failure);
}

// A handshake that failed may be the server's doing, and then it says why. A server that was found to be
// another one is asked nothing.
[[noreturn]] void failAfterHandshake(FtpControl& control, const Failure& failure) {
  const bool broken = failure.error == kSecureChannelFailed || failure.error == kConnectionAborted ||
                      failure.error == kConnectionReset;
  if (!broken) control.channel().drop();
  failWithReason(control, failure);
}

}  // namespace

FtpDataChannel::~FtpDataChannel() { (encrypted_ ? encrypted_->socket() : socket_).abort(); }

bool FtpDataChannel::isActive(FtpControl& control) noexcept {
  return !control.login().passive && !control.channel().proxy();
}

void FtpDataChannel::foresee(FtpControl& control) {
  if (!isActive(control))
    static_cast<void>(control.foresee(control.knownTraits().noExtendedPassive ? "PASV" : "EPSV"));
}

void FtpDataChannel::prepare(std::string_view verb, std::string_view argument) {
  ControlChannel& channel = control_.channel();
  peer_ = channel.peerAddress();
  const bool active = isActive(control_);
  if (!active && !control_.login().passive) channel.log().note("passive, for a proxy takes no connections");
  if (active) {
    prepareActive(verb, argument);
  } else if (!prepareExtendedPassive()) {
    preparePassive();
  }
}

bool FtpDataChannel::prepareExtendedPassive() {
  if (control_.knownTraits().noExtendedPassive) return false;
  const FtpReply reply = control_.command("EPSV");
  if (reply.refused() && !forbidden(reply)) control_.raise(reply);
  const auto port = reply.refused() ? std::nullopt : parseExtendedPassivePort(reply.text);
  extendedPassiveRefused_ = !port;
  if (!port) return false;
  startToConnect(*port);
  if (control_.knownTraits().extendedPassiveWorks) return true;
  // On a host's first transfer the port is tried before the transfer command goes out, because behind that
  // command there is no way back to PASV.
  const Timeouts timeouts = control_.timeouts();
  if (standsWithin(Deadline(std::min(timeouts.epsvProbe, timeouts.connect)))) {
    control_.learn([](FtpTraits& traits) { traits.extendedPassiveWorks = true; });
    return true;
  }
  extendedPassiveUnreachable_ = true;
  return false;
}

void FtpDataChannel::preparePassive() {
  const FtpReply reply = control_.require("PASV");
  const auto port = parsePassivePort(reply.text);
  if (!port) fail(kInvalidServerResponse);
  // A server that refuses both has another reason, which may pass.
  if (extendedPassiveRefused_) {
    control_.learn([](FtpTraits& traits) { traits.noExtendedPassive = true; });
  }
  startToConnect(*port);
}

void FtpDataChannel::prepareActive(std::string_view verb, std::string_view argument) {
  const platform::SocketAddress local = control_.channel().localAddress();
  listening_ = true;
  if (!socket_.listen(local)) fail(kCannotConnect);
  const platform::SocketAddress bound = required(socket_.localAddress());
  if (control_.knownTraits().noExtendedActive) {
    control_.require("PORT", portArgument(bound));
    return;
  }
  const std::string port = extendedPortArgument(bound);
  const bool along = control_.knownTraits().activeWorks && !verb.empty();
  if (along && control_.foresee("EPRT", port)) static_cast<void>(control_.foresee(verb, argument));
  const FtpReply reply = control_.command("EPRT", port);
  extendedActive_ = reply.completed();
  if (extendedActive_) return;
  control_.learn([](FtpTraits& traits) { traits.activeWorks = false; });
  if (along || !forbidden(reply) || bound.v6) control_.raise(reply);
  control_.require("PORT", portArgument(bound));
  control_.learn([](FtpTraits& traits) { traits.noExtendedActive = true; });
}

void FtpDataChannel::startToConnect(std::uint16_t port) {
  ControlChannel& channel = control_.channel();
  const platform::Proxy* const proxy = channel.proxy();
  platform::SocketAddress address = peer_;
  address.port = proxy ? proxy->port : port;
  if (proxy) talk_ = channel.talkAbout(port);
  proxyFailure_.reset();
  connected_ = socket_.connect(address) == IoStatus::done;
  stands_ = connected_ && !talk_;
}

// One try, without waiting. A socket that is closed afterwards will never stand.
bool FtpDataChannel::tryToStand() {
  if (stands_ || !socket_.isOpen()) return stands_;
  if (listening_) {
    acceptPeer();
  } else {
    tryToConnect();
  }
  return stands_;
}

void FtpDataChannel::tryToConnect() {
  if (!connected_) {
    const IoStatus status = socket_.connectResult();
    connected_ = status == IoStatus::done;
    if (status == IoStatus::failed) socket_.close();
  }
  stands_ = connected_ && (!talk_ || talkToProxy());
}

bool FtpDataChannel::talkToProxy() {
  try {
    return talk_->goOn(socket_);
  } catch (const Failure& failure) {
    proxyFailure_ = failure;
    socket_.close();
    return false;
  }
}

void FtpDataChannel::acceptPeer() {
  platform::Socket accepted;
  platform::SocketAddress from;
  IoStatus status = IoStatus::failed;
  while ((status = socket_.accept(accepted, from)) == IoStatus::done) {
    if (from.sameHost(peer_)) {
      socket_ = std::move(accepted);
      stands_ = true;
      return;
    }
    platform::throwIfStopped();
  }
  // Such a socket stays ready and fails again, for as long as it is waited for.
  if (status != IoStatus::wouldBlock) socket_.close();
}

bool FtpDataChannel::standsWithin(const Deadline& deadline) {
  while (!tryToStand()) {
    std::array watched{interest()};
    if (!socket_.isOpen() || !wait(watched, deadline)) return false;
  }
  return true;
}

FtpDataChannel::Opening FtpDataChannel::establish() {
  ControlChannel& channel = control_.channel();
  const Timeouts timeouts = control_.timeouts();
  const Deadline deadline(timeouts.connect);
  Opening opening;
  while (!tryToStand()) {
    takeReplies(opening);
    const bool over = opening.final && (listening_ || opening.final->refused());
    if (over && !standsAfterAll(*opening.final, deadline)) {
      // A transfer that has begun and lost its connection is broken, which the refusal only explains.
      const bool broken = opening.first.preliminary() && !socket_.isOpen();
      if (broken && opening.final->refused()) control_.raise(*opening.final);
      return opening;
    }
    if (stands_) break;
    if (!opening.final && !channel.isOpen()) channel.reply(kAtOnce);  // fails with the reason
    if (!socket_.isOpen()) failWithReason(control_, proxyFailure_.value_or(Failure{kCannotConnect, {}}));
    std::array watched{interest(), opening.final ? platform::SocketInterest{} : channel.readInterest()};
    if (!wait(watched, deadline)) failWithReason(control_, {kTimeout, {}});
  }
  if (extendedActive_ && stands_) control_.learn([](FtpTraits& traits) { traits.activeWorks = true; });
  if (control_.tls()) shakeHands(opening);
  if (!replied(opening)) {
    opening.first = channel.reply(timeouts.reply);
    note(opening, opening.first);
  }
  if (extendedPassiveUnreachable_ && !opening.first.refused()) {
    control_.learn([](FtpTraits& traits) { traits.noExtendedPassive = true; });
  }
  if (encrypted_) awaitVerdict(opening);
  return opening;
}

// Some servers want the handshake before their first reply, some behind it: both are watched. What they
// refuse meanwhile has no connection.
void FtpDataChannel::shakeHands(Opening& opening) {
  ControlChannel& channel = control_.channel();
  const Deadline deadline(control_.timeouts().connect);
  const auto goOn = [&](const platform::SocketInterest& handshake) {
    takeReplies(opening);
    if (opening.final && opening.final->refused()) return false;
    if (!opening.final && !channel.isOpen()) channel.reply(kAtOnce);  // fails with the reason
    std::array watched{handshake, opening.final ? platform::SocketInterest{} : channel.readInterest()};
    if (!wait(watched, deadline)) failWithReason(control_, {kTimeout, {}});
    return true;
  };
  try {
    auto plain = std::make_unique<Sock>(std::move(socket_));
    encrypted_ = control_.tls()->secure(std::move(plain), platform::TlsUse::data, goOn);
  } catch (const Failure& failure) {
    failAfterHandshake(control_, failure);
  }
  stands_ = encrypted_ != nullptr;
  if (!stands_) return control_.freshTlsRefused(*opening.final);
  channel.log().note(control_.tls()->description());
}

// Whether a server wants data connections to resume a session it says only behind the handshake, when a
// caller may already have sent what cannot be sent again. So at its first connection that has resumed none it
// is given time to speak.
void FtpDataChannel::awaitVerdict(Opening& opening) {
  if (!control_.mayWantOlderTls() || control_.tls()->description().ends_with(", resumed")) return;
  const Deadline deadline(control_.timeouts().tlsVerdict);
  while (!opening.final && control_.isOpen()) {
    takeReplies(opening);
    std::array watched{control_.channel().readInterest()};
    if (opening.final || !wait(watched, deadline)) break;
  }
  if (opening.final && opening.final->refused()) {
    control_.freshTlsRefused(*opening.final);
  } else {
    control_.learn([](FtpTraits& traits) { traits.takesFreshTls = true; });
  }
}

// Those that have come, up to the final one.
void FtpDataChannel::takeReplies(Opening& opening) {
  ControlChannel& channel = control_.channel();
  while (!opening.final) {
    auto reply = channel.tryReply(kAtOnce);
    if (!reply) return;
    if (!replied(opening)) {
      channel.notifyReply(*reply);
      opening.first = *reply;
    }
    note(opening, *reply);
  }
}

// The server has ended the transfer. Its data may have come by another way than its reply, and later.
bool FtpDataChannel::standsAfterAll(const FtpReply& final, const Deadline& deadline) {
  const milliseconds grace = final.refused() ? kAtOnce : control_.timeouts().endOfData;
  return standsWithin(Deadline(std::min(grace, deadline.left())));
}

std::unique_ptr<Sock> FtpDataChannel::take() {
  if (encrypted_) return std::move(encrypted_);
  return stands_ ? std::make_unique<Sock>(std::move(socket_)) : nullptr;
}

platform::SocketInterest FtpDataChannel::interest() const noexcept {
  return talk_ && connected_ ? talk_->interest(socket_)
                             : platform::SocketInterest{&socket_, listening_, !listening_};
}

}  // namespace internet
