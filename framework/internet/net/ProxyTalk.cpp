// SPDX-License-Identifier: MIT
#include "framework/internet/net/ProxyTalk.h"

#include <algorithm>
#include <array>
#include <utility>

#include "framework/internet/net/ConnectTalk.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/internet/net/SocksTalk.h"

namespace internet {

using platform::IoStatus;

Failure proxyFailure(const platform::Proxy& proxy, std::uint32_t error, std::string_view words) {
  Failure failure{error, shownText("Proxy " + proxy.text + ": " + std::string(words))};
  failure.ownText = true;
  return failure;
}

void ProxyTalk::refuse(std::string_view words) const {
  throw ProxyRefusal{proxyFailure(proxy_, kCannotConnect, words)};
}

void ProxyTalk::misunderstand(std::string_view words) const {
  throw Failure(proxyFailure(proxy_, kCannotConnect, words));
}

void ProxyTalk::failOf(IoStatus status) const {
  misunderstand(status == IoStatus::closed ? "It has ended the connection"
                                           : "The connection to it was broken");
}

void ProxyTalk::say(secret::Text bytes, std::size_t answer) {
  toSend_ = std::move(bytes);
  sent_ = 0;
  listen(answer);
}

bool ProxyTalk::goOn(platform::Socket& socket) {
  while (missing_ > 0) {
    if (!sendOn(socket) || !receiveOn(socket)) return false;
  }
  return true;
}

bool ProxyTalk::sendOn(platform::Socket& socket) {
  for (std::string_view left; !(left = toSend_.view().substr(sent_)).empty();) {
    const platform::IoResult sent = socket.send(left.data(), left.size());
    if (sent.status == IoStatus::wouldBlock) return false;
    if (sent.status != IoStatus::done) failOf(sent.status);
    sent_ += sent.bytes;
  }
  return true;
}

// The answer to what was said. False when it is not here yet.
bool ProxyTalk::receiveOn(platform::Socket& socket) {
  std::array<char, 512> block;
  while (missing_ > 0) {
    const platform::IoResult received = socket.receive(block.data(), std::min(missing_, block.size()));
    if (received.status == IoStatus::wouldBlock) return false;
    if (received.status != IoStatus::done) failOf(received.status);
    answer_.append(block.data(), received.bytes);
    missing_ -= received.bytes;
  }
  heard(std::exchange(answer_, {}));
  return true;
}

platform::SocketInterest ProxyTalk::interest(const platform::Socket& socket) const noexcept {
  const bool sends = sent_ < toSend_.view().size();
  return {&socket, !sends, sends};
}

std::unique_ptr<ProxyTalk> makeProxyTalk(const platform::Proxy& proxy, const std::string& host,
                                         std::uint16_t port) {
  if (proxy.kind == platform::Proxy::Kind::socks) return std::make_unique<SocksTalk>(proxy, host, port);
  return std::make_unique<ConnectTalk>(proxy, host, port);
}

}  // namespace internet
