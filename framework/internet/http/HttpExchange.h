// SPDX-License-Identifier: MIT
// One GET request and its response over a connection of its own, which the server is asked to end. Failures
// are thrown as internet::Failure (12002, 12007, 12019, 12029, 12030, 12031, 12152) and end the connection.
// A notification may destroy the caller's object: callers hold the exchange by a reference of their own.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "framework/internet/http/HttpResponse.h"
#include "framework/internet/net/Dialer.h"
#include "framework/internet/tls/TlsPolicy.h"
#include "framework/text/Secret.h"

namespace internet {

// Where requests go.
struct HttpServer {
  std::string name;
  std::uint16_t port = 0;
  TlsPolicy tls = {};

  [[nodiscard]] bool encrypted() const noexcept { return tls.encryption != Encryption::none; }
};

class HttpExchange : public SessionMember {
 public:
  HttpExchange(std::shared_ptr<SessionLink> session, HttpServer server, std::string target);

  // "Name: value", without control bytes.
  static bool isHeaderLine(std::string_view line) noexcept;
  [[nodiscard]] bool hasHeader(std::string_view line) const noexcept;  // one of the same name
  void addHeader(std::string_view line);

  // Nothing in server and target is unfit for a request.
  [[nodiscard]] bool sendable() const noexcept;
  // Connects, sends the request and takes the head of the response: 10 to 41.
  void send();
  // The head of the response. Fails with 12019 before there is one.
  [[nodiscard]] const HttpHead& head() const;

  // Bytes of the body that have come and were not read yet. Waits for the first where there is none; 0 at the
  // body's end.
  std::size_t available();
  // Fills `buffer`; less only at the body's end. A body that is cut short is a failure.
  std::size_t read(char* buffer, std::size_t size);
  struct Piece {
    std::size_t bytes = 0;
    bool ended = false;  // nothing of the body is left
  };
  // The same, but what has come when `patience` is over is all that it gives, be it nothing.
  Piece readFor(char* buffer, std::size_t size, std::chrono::milliseconds patience);

  // 50, 51, 70.
  void close() noexcept override;

 private:
  enum class State { idle, sent, answered, closed };

  [[nodiscard]] secret::Text request() const;
  void connect();
  void exchangeHeads();
  void requireProxysConsent() const;
  void require(State state) const;
  std::size_t fill(char* buffer, std::size_t size, const Deadline* patience);
  bool awaitBody(const Deadline* patience);
  bool receiveBody(const Deadline* patience);
  [[nodiscard]] bool receive(const Deadline& deadline);
  template <class Work>
  void dropOnFailure(Work work);

  Dialer dialer_;
  const HttpServer server_;
  const std::string target_;
  std::vector<std::string> headers_;
  State state_ = State::idle;
  std::unique_ptr<Sock> sock_;
  std::unique_ptr<char[]> block_;  // what has been received last
  HttpResponse response_;
  Deadline silence_{std::chrono::milliseconds(0)};  // of the body; put off by every byte
};

}  // namespace internet
