// SPDX-License-Identifier: MIT
// What the tests of encrypted streams do with the fixture's TLS server.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/Sock.h"
#include "framework/internet/tls/TlsSock.h"
#include "tests/support/Fixture.h"

namespace internet::tls_testing {

inline constexpr std::chrono::milliseconds kLong{60'000};

std::unique_ptr<Sock> connectTo(const fixture::Server& server);

// The name that the fixture's good certificate was made out to.
inline constexpr const char* kName = "localhost";

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

std::unique_ptr<Sock> secured(TlsLogin& login, const fixture::Server& server,
                              platform::TlsUse use = platform::TlsUse::control);

// Everything up to the end of the stream, and how that was.
struct Received {
  std::string bytes;
  platform::IoStatus end = platform::IoStatus::wouldBlock;
};
Received receiveAll(Sock& sock);

}  // namespace internet::tls_testing
