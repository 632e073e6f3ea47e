// SPDX-License-Identifier: MIT
#include "tests/internet/TlsPeer.h"

#include <gtest/gtest.h>

#include <array>

#include "framework/platform/process.h"
#include "tests/support/TestTrust.h"

namespace internet::tls_testing {

std::unique_ptr<Sock> connectTo(const fixture::Server& server) {
  static_cast<void>(platform::startSockets());
  platform::SocketAddress address;
  address.host = {127, 0, 0, 1};
  address.port = server.port();
  return connectToAny({address}, Deadline(kLong));
}

std::unique_ptr<Sock> secured(TlsLogin& login, const fixture::Server& server, platform::TlsUse use) {
  return login.secure(connectTo(server), use, Deadline(kLong));
}

Received receiveAll(Sock& sock) {
  Received all;
  std::array<char, std::size_t{16} * 1024> block;
  for (;;) {
    const auto some = receiveSome(sock, block, Deadline(kLong));
    if (some.status != platform::IoStatus::done) {
      all.end = some.status;
      return all;
    }
    all.bytes.append(block.data(), some.bytes);
  }
}

}  // namespace internet::tls_testing
