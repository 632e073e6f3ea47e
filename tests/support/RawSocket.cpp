// SPDX-License-Identifier: MIT
// The part of RawSocket that is the same over both socket interfaces.
#include "tests/support/RawSocket.h"

#include <stdexcept>
#include <utility>

namespace testing_support {

RawSocket::RawSocket(RawSocket&& other) noexcept
    : socket_(std::exchange(other.socket_, kNone)), received_(std::move(other.received_)) {}

RawSocket& RawSocket::operator=(RawSocket&& other) noexcept {
  std::swap(socket_, other.socket_);
  std::swap(received_, other.received_);
  return *this;
}

std::string RawSocket::readLine() {
  char buffer[65536];
  std::size_t searched = 0;
  for (;;) {
    if (const auto end = received_.find('\n', searched); end != std::string::npos) {
      std::string line = received_.substr(0, end);
      received_.erase(0, end + 1);
      if (line.ends_with('\r')) line.pop_back();
      return line;
    }
    searched = received_.size();
    const std::size_t count = receiveSome(buffer, sizeof buffer);
    if (count == 0) throw std::runtime_error("the connection ended after \"" + received_ + "\"");
    received_.append(buffer, count);
  }
}

std::string RawSocket::readToEnd(std::size_t limit) {
  std::string all = std::exchange(received_, {});
  char buffer[65536];
  while (all.size() < limit) {
    const std::size_t count = receiveSome(buffer, sizeof buffer);
    if (count == 0) break;
    all.append(buffer, count);
  }
  return all;
}

}  // namespace testing_support
