// SPDX-License-Identifier: MIT
// SOCKS 5 (RFC 1928) with user and password (RFC 1929).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "framework/internet/net/ProxyTalk.h"

namespace internet {

class SocksTalk : public ProxyTalk {
 public:
  SocksTalk(const platform::Proxy& proxy, std::string host, std::uint16_t port);

 protected:
  void heard(std::string_view answer) override { (this->*next_)(answer); }

 private:
  [[nodiscard]] bool hasLogin() const noexcept { return !proxy().user.empty() || !proxy().password.empty(); }
  void greet();
  void takeMethod(std::string_view answer);
  void logIn();
  void takeLogin(std::string_view answer);
  void request();
  void takeOutcome(std::string_view answer);
  void takeAddressKind(std::string_view answer);
  void takeAddress(std::string_view answer);

  const std::string host_;
  const std::uint16_t port_;
  void (SocksTalk::*next_)(std::string_view) = nullptr;
};

}  // namespace internet
