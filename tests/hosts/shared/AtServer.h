// SPDX-License-Identifier: MIT
// A client of the built library at a scripted server.
#pragma once

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

#include "hosts/shared/ListingWatch.h"
#include "tests/support/Fixture.h"
#include "tests/support/ScratchFolder.h"

#include "QXClient.h"

namespace hosts {

inline const qx::Exports& builtLibrary() {
  static const qx::Exports loaded = qx::loadLibrary(std::getenv("QX_LIBRARY")).value();
  return loaded;
}

class AtServer : public testing::Test {
 protected:
  explicit AtServer(const char* script) : server(script) {
    qx::Lambdas lambdas;
    lambdas.line = [this](const char* line) { watch.take(line); };
    lambdas.poll = [this](const qx::Progress& progress) {
      return polled ? polled(progress) : qx::Poll::goOn;
    };
    client.use(std::move(lambdas));
    EXPECT_TRUE(client.setLogin({.host = "127.0.0.1", .port = server.port()}));
  }

  static std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  static void write(const std::filesystem::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
  }

  const fixture::ScriptedFtp server;
  const testing_support::ScratchFolder scratch;
  ListingWatch watch;
  std::function<qx::Poll(const qx::Progress&)> polled;
  qx::Client client = qx::Client::make(builtLibrary()).value();
};

}  // namespace hosts
