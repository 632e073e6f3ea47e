// SPDX-License-Identifier: MIT
// A request to a web server and its response, opened by CHttpConnection::OpenRequest. Except where said
// otherwise a function throws CInternetException*: 12019 out of turn, 12007, 12029, 12002, 12030 (also for a
// body that ends too early), 12031, 12152 for what is no response. A failure ends the exchange. Every wait
// may leave by OperationStopped.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "framework/internet/net/InternetErrors.h"

namespace internet {
class HttpExchange;
}

class CHttpFile {
 public:
  explicit CHttpFile(std::shared_ptr<internet::HttpExchange> exchange) noexcept;
  ~CHttpFile();  // Close()
  CHttpFile(const CHttpFile&) = delete;
  CHttpFile& operator=(const CHttpFile&) = delete;

  // Adds header lines, each ended by CR LF. False with the last error set, and nothing added, when one is no
  // header line (87), or with kAddIfNew there is one of its name (12155).
  bool AddRequestHeaders(const char* headers, std::uint32_t flags = internet::kAddIfNew,
                         std::size_t length = std::string::npos);
  // Connects, sends the request and waits for the head of the response. Once per request. False, with the
  // last error 87 and nothing sent, when server or object hold bytes that have no place in a request.
  bool SendRequest();

  // False with the last error 12019 when there is no response.
  bool QueryInfoStatusCode(std::uint32_t& status) const;
  // All lines of the response's head, each ended by CR LF, the empty one too. False as above.
  bool QueryRawHeaders(std::string& headers) const;

  // Bytes of the body that have come and were not read yet; where there is none, waits for the first. 0 at
  // the body's end.
  std::uint64_t GetLength();
  // Fills `buffer`; fewer bytes only at the body's end, 0 at its end.
  std::uint32_t Read(void* buffer, std::uint32_t size);
  // The same, but what has come when `patience` is over is all that it gives, be it nothing. `ended` tells
  // whether nothing of the body is left.
  std::uint32_t ReadFor(void* buffer, std::uint32_t size, std::chrono::milliseconds patience, bool& ended);

  // May be called twice, and after connection and session are gone. Never throws; keeps the last error.
  void Close() noexcept;

 private:
  std::shared_ptr<internet::HttpExchange> m_exchange;
};
