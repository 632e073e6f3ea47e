// SPDX-License-Identifier: MIT
// What the tests of encrypted streams do with the fixture's TLS server.
#pragma once

#include <chrono>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/internet/net/Sock.h"
#include "framework/internet/tls/TlsSock.h"
#include "tests/support/Fixture.h"

namespace internet::tls_testing {

inline constexpr std::chrono::milliseconds kLong{60'000};

// The name that the fixture's good certificate was made out to.
inline constexpr const char* kName = "localhost";

std::unique_ptr<Sock> connectTo(const fixture::Server& server);
std::unique_ptr<Sock> secured(TlsLogin& login, const fixture::Server& server,
                              platform::TlsUse use = platform::TlsUse::control);

// A server whose authority is trusted, and a login at it.
struct Peer {
  explicit Peer(std::string_view script, const TlsPolicy& policy = {}, const char* name = kName);
  std::unique_ptr<Sock> control() { return secured(*login, server); }
  std::unique_ptr<Sock> data() { return secured(*login, server, platform::TlsUse::data); }
  // How its connection of that number has ended: "how", "bytes", "sha256", "received".
  [[nodiscard]] nlohmann::json closed(int connection) const;

  fixture::ScriptedTls server;
  std::unique_ptr<TlsLogin> login;
};

// Runs `work`, which is to fail.
template <class Work>
Failure failureOf(Work&& work) {
  try {
    work();
  } catch (const Failure& failure) {
    return failure;
  }
  return {0, "no failure"};
}

// Everything up to the end of the stream, and how that was.
struct Received {
  std::string bytes;
  platform::IoStatus end = platform::IoStatus::wouldBlock;
};
Received receiveAll(Sock& sock);

std::string sha256Of(std::string_view bytes);

}  // namespace internet::tls_testing
