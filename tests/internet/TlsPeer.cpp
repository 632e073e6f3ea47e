// SPDX-License-Identifier: MIT
#include "tests/internet/TlsPeer.h"

#include <gtest/gtest.h>

#include <array>
#include <nlohmann/json.hpp>

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

Peer::Peer(std::string_view script, const TlsPolicy& policy, const char* name) : server(script) {
  testing_support::trustTestAuthority();
  login = std::make_unique<TlsLogin>(name, policy);
}

nlohmann::json Peer::closed(int connection) const {
  server.waitUntilClosed(connection);
  const nlohmann::json log = server.log();
  for (const auto& each : log.at("closed")) {
    if (each.at("connection") == connection) return each;
  }
  return {};
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

std::string sha256Of(std::string_view bytes) {
  std::string text;
  for (const unsigned char byte : platform::sha256(bytes.data(), bytes.size())) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    text += {kDigits[byte >> 4U], kDigits[byte & 0xfU]};
  }
  return text;
}

}  // namespace internet::tls_testing
