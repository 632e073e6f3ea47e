// SPDX-License-Identifier: MIT
#include "framework/internet/http/HttpExchange.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "framework/internet/http/HttpUrl.h"
#include "framework/internet/net/ConnectTalk.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/internet/tls/TlsSock.h"
#include "framework/platform/last_error.h"
#include "framework/text/AsciiText.h"

namespace internet {

using platform::IoStatus;

namespace {

std::string_view firstLine(std::string_view lines) noexcept { return lines.substr(0, lines.find('\r')); }

std::string_view nameOf(std::string_view line) noexcept { return line.substr(0, line.find(':')); }

}  // namespace

HttpExchange::HttpExchange(std::shared_ptr<SessionLink> session, HttpServer server, std::string target)
    : dialer_(std::move(session)), server_(std::move(server)), target_(std::move(target)) {}

// --- The request ---

bool HttpExchange::isHeaderLine(std::string_view line) noexcept {
  const std::string_view name = nameOf(line);
  return !name.empty() && name.size() < line.size() && name.find(' ') == std::string_view::npos &&
         std::none_of(line.begin(), line.end(), ascii::isControl);
}

bool HttpExchange::hasHeader(std::string_view line) const noexcept {
  return std::any_of(headers_.begin(), headers_.end(), [name = nameOf(line)](const std::string& known) {
    return ascii::equalBlindToCase(nameOf(known), name);
  });
}

void HttpExchange::addHeader(std::string_view line) { headers_.emplace_back(line); }

bool HttpExchange::sendable() const noexcept { return isHostName(server_.name) && isSendable(target_); }

secret::Text HttpExchange::request() const {
  const std::string host =
      hostField(server_.name, server_.port, server_.encrypted() ? kDefaultHttpsPort : kDefaultHttpPort);
  const std::string place = dialer_.forwards() ? "http://" + host : "";
  secret::Text text("GET " + place + target_ + " HTTP/1.1\r\nHost: " + host + "\r\n");
  if (dialer_.forwards()) text.append(proxyAuthorization(*dialer_.proxy()).view());
  for (const std::string& line : headers_) text.append(line).append("\r\n");
  // Each request has a connection of its own: nothing is gained by keeping it.
  return text.append("Connection: close\r\n\r\n");
}

void HttpExchange::send() {
  require(State::idle);
  state_ = State::sent;
  dropOnFailure([this] { exchangeHeads(); });
  dialer_.notify(kStatusRequestComplete);
}

void HttpExchange::connect() {
  std::optional<TlsLogin> tls;
  if (server_.encrypted()) tls.emplace(server_.name, server_.tls, false);
  sock_ = dialer_.connect({server_.encrypted() ? "https" : "http", server_.name, server_.port});
  dialer_.notify(kStatusConnected);
  if (!tls) return;
  require(State::sent);
  sock_ = tls->secure(std::move(sock_), platform::TlsUse::control, Deadline(dialer_.timeouts().connect));
  dialer_.log().note(tls->description());
}

void HttpExchange::exchangeHeads() {
  connect();
  dialer_.notify(kStatusSendingRequest);
  require(State::sent);
  const secret::Text lines = request();
  dialer_.log().sent(firstLine(lines.view()));
  const IoStatus status = sendAll(*sock_, lines.view(), Deadline(dialer_.timeouts().reply));
  if (status != IoStatus::done) throw sock_->failureOf(status);
  dialer_.notify(kStatusRequestSent);
  dialer_.notify(kStatusReceivingResponse);
  const Deadline deadline(dialer_.timeouts().reply);
  while (!response_.headComplete()) {
    require(State::sent);
    if (!receive(deadline)) fail(kTimeout);
  }
  state_ = State::answered;
  silence_ = Deadline(dialer_.timeouts().data);
  dialer_.log().received(firstLine(response_.head().raw));
  dialer_.notify(kStatusResponseReceived);
  requireProxysConsent();
}

// A proxy that wants a login of its own speaks for itself, whatever the server would have said.
void HttpExchange::requireProxysConsent() const {
  constexpr int kProxyLoginWanted = 407;
  if (!dialer_.forwards() || response_.head().status != kProxyLoginWanted) return;
  const platform::Proxy& proxy = *dialer_.proxy();
  throw Failure(proxyFailure(proxy, kCannotConnect, proxyStatusLine(proxy, response_.head().raw)));
}

// --- The response ---

const HttpHead& HttpExchange::head() const {
  require(State::answered);
  return response_.head();
}

std::size_t HttpExchange::available() { return awaitBody(nullptr) ? response_.available() : 0; }

std::size_t HttpExchange::read(char* buffer, std::size_t size) { return fill(buffer, size, nullptr); }

HttpExchange::Piece HttpExchange::readFor(char* buffer, std::size_t size,
                                          std::chrono::milliseconds patience) {
  const Deadline limit(patience);
  const std::size_t bytes = fill(buffer, size, &limit);
  return {bytes, response_.complete() && response_.available() == 0};
}

std::size_t HttpExchange::fill(char* buffer, std::size_t size, const Deadline* patience) {
  std::size_t filled = 0;
  while (filled < size && awaitBody(patience)) filled += response_.take(buffer + filled, size - filled);
  return filled;
}

// Waits until there is some of the body; false at its end, and when the patience, where there is one, is
// over.
bool HttpExchange::awaitBody(const Deadline* patience) {
  require(State::answered);
  if (response_.available() == 0 && !response_.complete()) {
    dropOnFailure([&] {
      while (response_.available() == 0 && !response_.complete() && receiveBody(patience)) {
      }
    });
  }
  return response_.available() > 0;
}

// False when the patience is over.
bool HttpExchange::receiveBody(const Deadline* patience) {
  const bool silenceEndsFirst = patience == nullptr || silence_.left() < patience->left();
  if (receive(silenceEndsFirst ? silence_ : *patience)) {
    silence_ = Deadline(dialer_.timeouts().data);  // the server is alive, be it framing alone that has come
    return true;
  }
  if (silenceEndsFirst) fail(kTimeout);
  return false;
}

// False when nothing has come before the deadline.
bool HttpExchange::receive(const Deadline& deadline) {
  if (!block_) block_ = std::make_unique_for_overwrite<char[]>(kHttpBlock);
  const auto received = receiveSome(*sock_, {block_.get(), kHttpBlock}, deadline);
  if (received.status == IoStatus::wouldBlock) return false;
  if (received.status == IoStatus::closed) {
    if (!response_.endOfStream()) fail(kConnectionAborted);
  } else if (received.status != IoStatus::done) {
    throw sock_->failureOf(received.status);
  } else if (!response_.feed({block_.get(), received.bytes})) {
    fail(kInvalidServerResponse);
  }
  return true;
}

// --- State ---

void HttpExchange::require(State state) const {
  if (state_ != state) fail(kIncorrectHandleState);
}

// A broken exchange is of no further use, whatever broke it.
template <class Work>
void HttpExchange::dropOnFailure(Work work) {
  std::optional<Failure> failure;
  const auto drop = [this] {
    if (state_ != State::closed) state_ = State::sent;
    sock_.reset();
  };
  try {
    work();
    return;
  } catch (const Failure& thrown) {
    failure = thrown;
    drop();
  } catch (...) {
    drop();
    throw;
  }
  dialer_.reportClosed();
  throw Failure(std::move(*failure));
}

void HttpExchange::close() noexcept {
  if (std::exchange(state_, State::closed) == State::closed) return;
  const platform::LastErrorKeeper keeper;
  sock_.reset();
  dialer_.reportEnd();
}

}  // namespace internet
