// SPDX-License-Identifier: MIT
// What a CHttpConnection stands for: a server, and the requests made to it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/internet/http/HttpExchange.h"
#include "framework/internet/net/SessionLink.h"

namespace internet {

class HttpSite : public SessionMember {
 public:
  HttpSite(std::shared_ptr<SessionLink> session, HttpServer server);

  // Reports 60. Fails with 12019 when closed.
  std::shared_ptr<HttpExchange> open(std::string target);
  // Closes the requests, then itself: 70.
  void close() noexcept override;

  void notify(std::uint32_t status) { dialer_.notify(status); }

 private:
  std::shared_ptr<SessionLink> session_;
  Dialer dialer_;
  const HttpServer server_;
  std::vector<std::weak_ptr<HttpExchange>> exchanges_;
  bool closed_ = false;
};

}  // namespace internet
