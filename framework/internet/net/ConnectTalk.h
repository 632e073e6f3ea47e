// SPDX-License-Identifier: MIT
// CONNECT to an HTTP proxy (RFC 9110, 9.3.6).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "framework/internet/net/ProxyTalk.h"

namespace internet {

class ConnectTalk : public ProxyTalk {
 public:
  ConnectTalk(const platform::Proxy& proxy, const std::string& host, std::uint16_t port);

 protected:
  void heard(std::string_view answer) override;

 private:
  void judge();

  std::string head_;       // of the answer, as far as it has come
  std::size_t taken_ = 0;  // bytes of the interim answers ahead of it
};

// For requests over an HTTP proxy as well: the header line "Proxy-Authorization: ..." with its end; empty for
// a proxy without user and password.
secret::Text proxyAuthorization(const platform::Proxy& proxy);
// The status line of the proxy's answer, as it may be shown: some have the request in it.
std::string proxyStatusLine(const platform::Proxy& proxy, std::string_view head);

}  // namespace internet
