// SPDX-License-Identifier: MIT
// What the tests of the HTTP classes share: requests to a fixture server, and answers in JSON.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "framework/internet/HttpConnection.h"
#include "framework/internet/HttpFile.h"
#include "tests/internet/FtpTest.h"

namespace internet_tests {

// A connection and one request on it.
struct HttpFetch {
  HttpFetch(CInternetSession& session, const char* server, std::uint16_t port, const char* object = "/a",
            const char* const* acceptTypes = nullptr)
      : connection(session.GetHttpConnection(server, port)),
        request(connection->OpenRequest("GET", object, nullptr, 1, acceptTypes)) {}
  HttpFetch(CInternetSession& session, const fixture::Server& server, const char* object = "/a",
            const char* const* acceptTypes = nullptr)
      : HttpFetch(session, server.host().c_str(), server.port(), object, acceptTypes) {}

  std::string readToEnd(std::uint32_t block = 4096) const {
    std::string content;
    std::string buffer(block, '\0');
    while (const std::uint32_t count = request->Read(buffer.data(), block)) content.append(buffer, 0, count);
    return content;
  }
  [[nodiscard]] std::uint32_t status() const {
    std::uint32_t status = 0;
    request->QueryInfoStatusCode(status);
    return status;
  }
  [[nodiscard]] std::string rawHeaders() const {
    std::string headers;
    request->QueryRawHeaders(headers);
    return headers;
  }

  std::unique_ptr<CHttpConnection> connection;
  std::unique_ptr<CHttpFile> request;
};

class HttpTest : public ::testing::Test {
 protected:
  // A server that answers every request like this.
  static fixture::ScriptedHttp answering(const nlohmann::json& answer) {
    return fixture::ScriptedHttp(nlohmann::json{{"answers", nlohmann::json::array({answer})}});
  }

  // For what never comes.
  void shortenTimeouts() {
    internet::Timeouts timeouts;
    timeouts.connect = timeouts.reply = timeouts.data = std::chrono::milliseconds(2'000);
    session.SetTimeouts(timeouts);
  }

  // The answer's body, or what is thrown on the way to it.
  std::string fetched(const nlohmann::json& answer) {
    const auto server = answering(answer);
    const HttpFetch fetch(session, server);
    EXPECT_TRUE(fetch.request->SendRequest());
    return fetch.readToEnd();
  }
  std::uint32_t errorOfFetch(const nlohmann::json& answer) {
    return thrownBy([&] { fetched(answer); }).error;
  }

  RecordingSession session;
};

}  // namespace internet_tests
