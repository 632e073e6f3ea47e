// SPDX-License-Identifier: MIT
// What is said to a proxy before a connection is the server's. Each answer is read to its last byte and not
// beyond: what follows may be the server's already.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "framework/internet/net/Failure.h"
#include "framework/platform/proxies.h"
#include "framework/platform/socket.h"
#include "framework/text/Secret.h"

namespace internet {

// The proxy has said no, or cannot be asked for this: another one is no way around that.
struct ProxyRefusal : Failure {};

// "Proxy socks5://proxy:1080: WORDS", the whole of what is told of a failure.
Failure proxyFailure(const platform::Proxy& proxy, std::uint32_t error, std::string_view words);

class ProxyTalk {
 public:
  explicit ProxyTalk(platform::Proxy proxy) : proxy_(std::move(proxy)) {}
  virtual ~ProxyTalk() = default;
  ProxyTalk(const ProxyTalk&) = delete;
  ProxyTalk& operator=(const ProxyTalk&) = delete;

  // One try over a connection to the proxy, without waiting. True: the connection is the server's from here
  // on. Fails with 12029 and a text: a ProxyRefusal, or a Failure when what is there is no such proxy, or has
  // left.
  bool goOn(platform::Socket& socket);
  // What to wait for before the next try.
  [[nodiscard]] platform::SocketInterest interest(const platform::Socket& socket) const noexcept;

 protected:
  // Sends `bytes`, then takes `answer` bytes.
  void say(secret::Text bytes, std::size_t answer);
  // Takes so many more; 0: all is said.
  void listen(std::size_t answer) noexcept { missing_ = answer; }
  // The bytes that were to be taken. Goes on by say() or listen(), else all is said.
  virtual void heard(std::string_view answer) = 0;

  [[nodiscard]] const platform::Proxy& proxy() const noexcept { return proxy_; }
  [[noreturn]] void refuse(std::string_view words) const;
  [[noreturn]] void misunderstand(std::string_view words) const;

 private:
  bool sendOn(platform::Socket& socket);
  bool receiveOn(platform::Socket& socket);
  [[noreturn]] void failOf(platform::IoStatus status) const;

  const platform::Proxy proxy_;
  secret::Text toSend_;
  std::size_t sent_ = 0;
  std::size_t missing_ = 0;
  std::string answer_;
};

// With `proxy` about a connection to `host`, a name or a numeric address without brackets, which the proxy
// looks up. REQUIRES: proxy.kind is http or socks.
std::unique_ptr<ProxyTalk> makeProxyTalk(const platform::Proxy& proxy, const std::string& host,
                                         std::uint16_t port);

}  // namespace internet
