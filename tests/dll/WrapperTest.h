// SPDX-License-Identifier: MIT
// qx::Client, the client of hosts in C++, at a server.
#pragma once

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "QXClient.h"
#include "tests/support/Fixture.h"
#include "tests/support/ScratchFolder.h"

namespace wrapper {

inline constexpr std::uint64_t kLarge = 700000;
inline constexpr char kScript[] = R"({"user": "me", "password": "secret", "tree": {
  "/pub/a.txt": "hello", "/pub/empty": "", "/pub/large": {"size": 700000, "seed": 5}, "/pub/sub/": {}},
  "rules": [{"on": "RETR", "argument": "/pub/large", "do": [{"normal": {"stall_after": 300000, "gate": "half"}}]},
            {"on": "STOR", "argument": "/pub/full",
             "do": [{"normal": {"close_after": 1000, "final": "552 Disk full"}}]}]})";

inline const qx::Exports& exports() {
  static const qx::Exports loaded = qx::loadLibrary(std::getenv("QX_LIBRARY")).value();
  return loaded;
}

inline std::uint32_t moduleCount() {
  exports().addRef();
  return exports().release();
}

inline std::span<const std::byte> bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

class Wrapper : public testing::Test {
 protected:
  Wrapper() { EXPECT_TRUE(client.setLogin(login())); }
  ~Wrapper() override {
    client = std::move(none);
    EXPECT_EQ(moduleCount(), 0U);
  }

  [[nodiscard]] qx::Login login(const char* password = "secret") const {
    return {
        .host = "127.0.0.1", .user = "me", .password = password, .port = server.port(), .isPassive = true};
  }

  static qx::Client make() { return qx::Client::make(exports()).value(); }

  static qx::Lambdas polling(std::function<qx::Poll(const qx::Progress&)> poll) {
    qx::Lambdas lambdas;
    lambdas.poll = std::move(poll);
    return lambdas;
  }

  const fixture::ScriptedFtp server{kScript};
  const testing_support::ScratchFolder scratch;
  const std::string local = scratch.file("local");
  qx::Client client = make();
  qx::Client none = [] {
    qx::Client taken = make();
    const qx::Client away = std::move(taken);
    return taken;
  }();
};

struct Thrown {};

}  // namespace wrapper
