// SPDX-License-Identifier: MIT
#include "framework/internet/http/HttpResponse.h"

#include <algorithm>

namespace internet {

bool HttpResponse::feed(std::string_view bytes) {
  if (!headComplete()) {
    bytes.remove_prefix(head_.feed(bytes));
    if (head_.state() == HttpHeadReader::State::invalid) return false;
    if (!headComplete()) return true;
    body_ = HttpBody(head_.head());
  }
  if (taken_ == content_.size()) {
    content_.clear();
    taken_ = 0;
  }
  return body_.feed(bytes, content_);
}

bool HttpResponse::endOfStream() noexcept { return headComplete() && body_.endOfStream(); }

std::size_t HttpResponse::take(char* buffer, std::size_t size) noexcept {
  const std::size_t count = content_.copy(buffer, std::min(size, available()), taken_);
  taken_ += count;
  return count;
}

}  // namespace internet
