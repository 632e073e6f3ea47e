// SPDX-License-Identifier: MIT
// How often a client has waited for a scripted server, by that server's log.
#pragma once

#include <nlohmann/json.hpp>

#include "tests/support/Fixture.h"

namespace testing_support {

// Greetings and answers to commands; commands that came together count once, and so does a transfer's first
// reply. Nobody waits for the answer to QUIT.
inline int roundTrips(const fixture::ScriptedFtp& server) {
  int trips = 0;
  bool asked = false;
  const nlohmann::json log = server.log(true);
  for (const nlohmann::json& event : log.at("events")) {
    if (event["event"] == "accept") {
      ++trips;
    } else if (event["event"] == "command" && event["verb"] != "QUIT") {
      trips += !asked;
      asked = true;
    } else if (event["event"] == "reply") {
      asked = false;
    }
  }
  return trips;
}

// With the last replies of transfers.
inline int repliesWaitedFor(const fixture::ScriptedFtp& server) {
  return roundTrips(server) + static_cast<int>(server.dataConnections().size());
}

}  // namespace testing_support
