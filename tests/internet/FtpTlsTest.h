// SPDX-License-Identifier: MIT
// What the tests of encrypted FTP share: servers with TLS, and connections to them by the host's text.
#pragma once

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/internet/CancelTest.h"
#include "tests/internet/FtpTest.h"
#include "tests/support/TestTrust.h"

namespace internet_tests {

using Lines = std::vector<std::string>;

class FtpTlsTest : public FtpTest {
 protected:
  static nlohmann::json script(const nlohmann::json& tls,
                               const nlohmann::json& rules = nlohmann::json::array()) {
    return {{"tls", tls}, {"rules", rules}, {"tree", {{"/small", "text"}, {"/dir/file", "x"}}}};
  }
  // The rule for what a server does in place of answering a command.
  static nlohmann::json instead(const char* verb, const nlohmann::json& steps) {
    return nlohmann::json::array({{{"on", verb}, {"do", steps}}});
  }

  // By what the host's text begins and ends with.
  std::unique_ptr<CFtpConnection> connectBy(const std::string& scheme, const fixture::Server& server,
                                            const std::string& options = {}, bool passive = true) {
    const std::string host = hostText(scheme, server, options);
    return std::unique_ptr<CFtpConnection>(
        session.GetFtpConnection(host.c_str(), "user", "secret", server.port(), passive));
  }
  static std::string hostText(const std::string& scheme, const fixture::Server& server,
                              const std::string& options = {}) {
    if (!scheme.empty()) testing_support::trustTestAuthority();
    return scheme + server.host() + options;
  }
  Thrown failureBy(const std::string& scheme, const fixture::Server& server,
                   const std::string& options = {}) {
    return thrownBy([&] { connectBy(scheme, server, options); });
  }

  // What a control connection said that everybody on the way could read.
  static Lines plainCommands(const fixture::Server& server, std::size_t connection = 1) {
    return server.log().at("connections").at(connection - 1).at("plain_commands");
  }
  // Nothing of login or data went out in plain text, over whichever connection.
  static void expectNothingPlain(const fixture::Server& server) {
    const nlohmann::json log = server.log();
    for (const auto& connection : log.at("connections")) {
      for (const std::string line : connection.at("plain_commands")) EXPECT_EQ(line, "AUTH TLS");
    }
    for (const auto& data : log.at("data")) {
      EXPECT_TRUE(data.at("tls").is_string() || data.at("bytes") == 0) << data;
    }
  }
};

}  // namespace internet_tests
