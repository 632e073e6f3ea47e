// SPDX-License-Identifier: MIT
#include "framework/internet/http/HttpSite.h"

#include <utility>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"

namespace internet {

HttpSite::HttpSite(std::shared_ptr<SessionLink> session, HttpServer server)
    : session_(std::move(session)), dialer_(session_), server_(std::move(server)) {}

std::shared_ptr<HttpExchange> HttpSite::open(std::string target) {
  if (closed_) fail(kIncorrectHandleState);
  auto exchange = std::make_shared<HttpExchange>(session_, server_, std::move(target));
  std::erase_if(exchanges_, [](const auto& known) { return known.expired(); });
  exchanges_.push_back(exchange);
  return exchange;
}

void HttpSite::close() noexcept {
  if (std::exchange(closed_, true)) return;
  // Taken out first: a notification may delete this site.
  const auto exchanges = std::exchange(exchanges_, {});
  for (const auto& known : exchanges) {
    if (const auto exchange = known.lock()) exchange->close();
  }
  dialer_.reportEnd();
}

}  // namespace internet
