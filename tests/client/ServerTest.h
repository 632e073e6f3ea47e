// SPDX-License-Identifier: MIT
// What the tests with a server have in common: a recording client with an error record, and a clean start.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "Src/TInternetSession.h"
#include "framework/internet/InternetSession.h"
#include "framework/internet/ftp/FtpTraits.h"
#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"
#include "tests/support/Fixture.h"

class ServerTest : public testing::Test {
 protected:
  using Names = std::vector<std::string>;

  // What is known of a server goes by its port, which a later server may get again.
  ServerTest() { internet::forgetCachedTraits(); }
  ~ServerTest() override { internet::setTimeoutsForTesting({}); }

  // For tests whose server keeps silent.
  void shortenTimeouts(std::chrono::milliseconds limit = std::chrono::milliseconds(2'000)) {
    internet::Timeouts timeouts;
    timeouts.connect = timeouts.reply = timeouts.data = timeouts.finalReply = limit;
    timeouts.earlyClose = timeouts.dataError = timeouts.epsvProbe = timeouts.endOfData = limit;
    internet::setTimeoutsForTesting(timeouts);
    client.m_pInternetSession->SetTimeouts(timeouts);
  }

  QXBool connectTo(const fixture::Server& server, const char* user = "user", bool passive = true) {
    return client.FTPConnect(server.host().c_str(), user, "secret", server.port(), passive ? 1 : 0, 0,
                             nullptr);
  }
  // Private connections of the operations go there.
  void loginAt(const fixture::Server& server, bool passive = true) {
    client.FTPSetLogin(server.host().c_str(), "user", "secret", server.port(), passive ? 1 : 0);
  }

  // A connection that was ended in good order says so to the server.
  static void expectQuit(const fixture::ScriptedFtp& server, int connection) {
    EXPECT_EQ(server.commands(connection).back(), "QUIT");
  }

  QXErrorInfo record{};
  RecordingClient client{&record};
};
