// SPDX-License-Identifier: MIT
// A client may go in every call that its host gets, in every operation: in the hooks, on the thread of the
// caller or of a worker, in a message, in a copy's callback, and from another thread meanwhile. FTPConnect,
// FTPDisconnect and FTPGetDirectory went on with the memory that was freed.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "framework/ModuleState.h"
#include "tests/lifetime/EndingClient.h"
#include "tests/lifetime/Operations.h"
#include "tests/storm/Mailbox.h"
#include "tests/support/Fixture.h"
#include "tests/support/ScratchFolder.h"

namespace lifetime {
namespace {

constexpr const char* kServes = R"({"user": "user"})";
// Breaks the connection off where an operation does its work.
constexpr const char* kBreaksOff = R"({"user": "user", "rules": [{
  "on": ["RETR", "STOR", "LIST", "MLSD", "MLST", "SIZE", "DELE", "MKD", "RMD", "RNFR", "PWD"],
  "do": ["close"]}]})";

struct Setting {
  const char* name;
  const char* script;
  bool connected;      // the client has a connection and finders of its own
  bool fromElsewhere;  // another thread frees the client
};

constexpr Setting kSettings[] = {{"Connected", kServes, true, false},
                                 {"LoggedIn", kServes, false, false},
                                 {"BrokenOff", kBreaksOff, true, false},
                                 {"FromAnotherThread", kServes, true, true}};

class FreeAnywhere : public testing::TestWithParam<Operation> {
 protected:
  FreeAnywhere() { std::ofstream(place.present) << "local"; }

  // One call of the operation by a client that goes at the planned moment, if it comes. Whether it did.
  bool run(const fixture::ScriptedFtp& server, const Setting& setting, const Moment* planned) {
    const std::uint32_t before = g_nModuleRefs;
    server.put(kTree);
    std::filesystem::remove(place.absent);
    place.ftpPort = server.port();
    EndingClient& client = host.renew();
    client.FTPSetLogin(place.address.c_str(), "user", "secret", server.port(), 1);
    if (setting.connected) {
      EXPECT_EQ(client.FTPConnect(place.address.c_str(), "user", "secret", server.port(), 1, 0, nullptr), 1);
    }
    host.watch(planned, setting.fromElsewhere);
    mailbox.post([this] {
      host.called("message");
      // What FTPKeepAlive waits for; the others take no notice.
      if (EndingClient* const left = host.client()) left->OnDisconnect();
    });
    GetParam().run(client, place);
    const bool came = host.finish();
    storm::dispatchAll();
    EXPECT_EQ(g_nModuleRefs, before) << "it has not gone, or not once";
    return came;
  }

  // All moments that a host finds in the operation, the first and the last of each kind.
  void freeAtEachMoment(const Setting& setting) {
    const fixture::ScriptedFtp server{std::string_view(setting.script)};
    static_cast<void>(run(server, setting, nullptr));
    for (const auto& [call, count] : host.counts()) {
      SCOPED_TRACE(std::string(setting.name) + ", " + call);
      const Moment first{call, 1};
      if (run(server, setting, &first)) ended.insert(call);
      const Moment last{call, count};
      if (count > 1 && call != "OnPoll") run(server, setting, &last);
    }
  }

  Host host;
  storm::Mailbox mailbox;
  testing_support::ScratchFolder folder;
  fixture::ScriptedHttp web{std::string_view(R"({"answers": [{"body": {"size": 50000}}]})")};
  Place place{host,
              web.host(),
              0,
              web.port(),
              testing_support::localName(folder.file("present")),
              testing_support::localName(folder.file("absent"))};
  std::set<std::string> ended;
};

TEST_P(FreeAnywhere, InEveryCallOfTheHost) {
  for (const Setting& setting : kSettings) {
    if (setting.script != kBreaksOff || !GetParam().goesOnForEver) freeAtEachMoment(setting);
  }
  for (const std::string& call : GetParam().calls) EXPECT_TRUE(ended.contains(call)) << call;
}

INSTANTIATE_TEST_SUITE_P(In, FreeAnywhere, testing::ValuesIn(operations()),
                         [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace
}  // namespace lifetime
