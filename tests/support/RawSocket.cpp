// SPDX-License-Identifier: MIT
// The part of RawSocket that is the same over both socket interfaces.
#include "tests/support/RawSocket.h"

#include <stdexcept>

namespace testing_support {

std::string RawSocket::readLine() {
  for (;;) {
    if (const auto end = received_.find('\n'); end != std::string::npos) {
      std::string line = received_.substr(0, end);
      received_.erase(0, end + 1);
      if (line.ends_with('\r')) line.pop_back();
      return line;
    }
    char buffer[16384];
    const long long count = receiveSome(buffer, sizeof buffer);
    if (count <= 0) throw std::runtime_error("the connection ended after \"" + received_ + "\"");
    received_.append(buffer, static_cast<std::size_t>(count));
  }
}

std::string RawSocket::readToEnd(std::size_t limit) {
  std::string all = std::move(received_);
  received_.clear();
  char buffer[65536];
  while (all.size() < limit) {
    const long long count = receiveSome(buffer, sizeof buffer);
    if (count < 0) throw std::runtime_error("the connection was reset");
    if (count == 0) break;
    all.append(buffer, static_cast<std::size_t>(count));
  }
  return all;
}

bool RawSocket::endedByReset() {
  char buffer[65536];
  long long count = 0;
  while ((count = receiveSome(buffer, sizeof buffer)) > 0) continue;
  return count < 0;
}

}  // namespace testing_support
