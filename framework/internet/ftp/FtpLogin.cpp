// SPDX-License-Identifier: MIT
// How a control connection comes up: the greeting, encryption and the login.
#include <utility>

#include "framework/internet/ftp/ErrandLines.h"
#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/ftp/ServerWords.h"
#include "framework/internet/net/InternetErrors.h"

namespace internet {

std::shared_ptr<FtpControl> FtpControl::open(std::shared_ptr<SessionLink> session, FtpLogin login,
                                             const FtpErrand& errand) {
  std::shared_ptr<FtpControl> control(new FtpControl(std::move(session), std::move(login)));
  control->visitsOnce_ = errand.kind == FtpErrand::Kind::find || errand.kind == FtpErrand::Kind::content;
  std::chrono::milliseconds pause = control->timeouts().crowdedPause;
  for (unsigned left = control->timeouts().crowdedRetries;; --left, pause *= 2) {
    try {
      control->connect(errand);
      return control;
    } catch (const Failure& failure) {
      // Nobody will ever have this connection to close.
      control->channel_.drop();
      control->channel_.reportClosed();
      if (left == 0 || !tellsOfCrowd(failure.serverText)) throw Failure(control->forHost(failure));
    }
    rest(pause);
  }
}

void FtpControl::connect(const FtpErrand& errand) {
  dial();
  try {
    logIn(errand);
  } catch (const Failure& failure) {
    if (!turnedDownForPacket(failure)) throw;
    // The session has been told of a connection, and this is still the same login.
    const ControlChannel::Silence silence(channel_);
    channel_.drop();
    dial();
    logIn(errand);
  }
}

void FtpControl::dial() {
  if (traits_.singleLines) channel_.sendSingly();
  tls_.reset();
  TlsPolicy policy = login_.tls;
  policy.onlyTls12 = policy.onlyTls12 || traits_.onlyTls12;
  if (policy.encryption != Encryption::none) tls_ = std::make_unique<TlsLogin>(login_.server, policy);
  channel_.open(login_.server, login_.port);
}

void FtpControl::secureChannel() {
  channel_.secure(*tls_);
  newestTls_ = tls_->description().starts_with("TLS 1.3");
}

void FtpControl::logIn(const FtpErrand& errand) {
  if (tls_ && login_.tls.encryption == Encryption::fromStart) secureChannel();
  const FtpReply greeting = finalReply();
  if (!greeting.completed()) refuseLogin(greeting);
  if (login_.tls.encryption == Encryption::onDemand) startTls();
  identify(errand);
  if (tls_) protectData();
  enableUtf8();
}

void FtpControl::refuseLogin(const FtpReply& reply) {
  loginRefusal_ = reply;
  fail(reply.code == 530 ? kIncorrectPassword : kLoginFailure, reply.text);
}

// Of a server that has taken lines behind PASS and asks this user for a password that goes along with USER.
void FtpControl::identify(const FtpErrand& errand) {
  const std::string user = "USER " + login_.user;
  const secret::Text password = secret::Text("PASS ").append(login_.password.view());
  const bool packets = traits_.takesPackets && !traits_.singleLines && !traits_.aloneAtLogin;
  const bool inOnePacket = packets && traits_.takesLoginPackets && traits_.asksPassword;
  loginRefusal_.reset();
  if (inOnePacket && channel_.foresee(user)) foreseeRest(password, errand);
  FtpReply reply = exchange(user);
  if (reply.code == 331) {
    if (!traits_.asksPassword) learn([](FtpTraits& traits) { traits.asksPassword = true; });
    if (packets && !inOnePacket) foreseeRest(password, errand);
    reply = exchange(password.view());
  }
  if (!reply.completed()) refuseLogin(reply);
  // Among others only the usual answers can be told from those of other lines.
  if (reply.code != 230) learn([](FtpTraits& traits) { traits.aloneAtLogin = true; });
}

// PASS, what comes behind it in any case, and then what the connection is made for.
void FtpControl::foreseeRest(const secret::Text& password, const FtpErrand& errand) {
  packetAtLogin_ = channel_.foresee(password.view());
  if (!packetAtLogin_) return;
  if (tls_ && !(channel_.foresee("PBSZ 0") && channel_.foresee("PROT P"))) return;
  if (traits_.speaksUtf8() && !channel_.foresee("OPTS UTF8 ON")) return;
  ErrandLines(*this).foresee(errand);
}

// Something on the way may not take what others there have taken. A login that was refused is no such case.
// Behind silence the next login goes step by step, but not this one: the server may have seen the password,
// and count how often it is told a wrong one.
bool FtpControl::turnedDownForPacket(const Failure& failure) {
  if (!std::exchange(packetAtLogin_, false)) return false;
  const bool closed = failure.error == kConnectionAborted || failure.error == kConnectionReset;
  const bool refused = loginRefusal_ && loginRefusal_->unsupported();
  const bool turnedDown = refused || (closed && failure.serverText.empty());
  if (turnedDown || failure.error == kTimeout) learn([](FtpTraits& traits) { traits.aloneAtLogin = true; });
  return turnedDown;
}

void FtpControl::startTls() {
  const FtpReply reply = exchange("AUTH TLS");
  if (!reply.completed()) fail(kExtendedError, reply.text);
  secureChannel();
}

void FtpControl::protectData() {
  // A buffer size without a meaning, which has to be told all the same.
  channel_.queue("PBSZ 0", [](const FtpReply&) { return true; });
  const FtpReply reply = exchange("PROT P");
  if (!reply.completed()) fail(kExtendedError, reply.text);
}

// A new connection in the place of a closed one. The session hears nothing of it: on its word that a
// connection comes up a client makes its finders anew, also the one that is asking.
void FtpControl::logInAgain() {
  const ControlChannel::Silence silence(channel_);
  const std::optional<std::string> directory = directoryForReturn();
  traits_ = cachedTraits(traitsKey_);
  binary_ = utf8Asked_ = false;
  if (!moved_) directory_.reset();
  try {
    if (!directory) fail(kConnectionAborted);
    connect({});
    returnTo(*directory);
  } catch (Failure& failure) {
    channel_.drop();
    failure.connectionLost = true;
    throw;
  } catch (...) {
    channel_.drop();
    throw;
  }
}

void FtpControl::returnTo(const std::string& directory) {
  if (directory.empty()) return;
  const FtpReply reply = command("CWD", directory);
  // In any other directory relative names would mean something else.
  if (!reply.completed()) fail(kConnectionAborted, reply.text);
}

}  // namespace internet
