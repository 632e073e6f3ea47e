// SPDX-License-Identifier: MIT
// One response of a web server, read as its bytes come: head, then body. No I/O.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "framework/internet/http/HttpBody.h"
#include "framework/internet/http/HttpHead.h"

namespace internet {

class HttpResponse {
 public:
  // False when that is no response; the connection is of no use then.
  [[nodiscard]] bool feed(std::string_view bytes);
  // The connection has ended in good order. False when the response is cut short by that.
  [[nodiscard]] bool endOfStream() noexcept;

  [[nodiscard]] bool headComplete() const noexcept {
    return head_.state() == HttpHeadReader::State::complete;
  }
  [[nodiscard]] const HttpHead& head() const noexcept { return head_.head(); }
  // All of the body has come.
  [[nodiscard]] bool complete() const noexcept { return headComplete() && body_.complete(); }

  // Bytes of the body that have come and were not taken yet.
  [[nodiscard]] std::size_t available() const noexcept { return content_.size() - taken_; }
  std::size_t take(char* buffer, std::size_t size) noexcept;

 private:
  HttpHeadReader head_;
  HttpBody body_;
  std::string content_;
  std::size_t taken_ = 0;
};

}  // namespace internet
