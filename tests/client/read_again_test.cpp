// SPDX-License-Identifier: MIT
// FTPReadFile whose OnPoll asks for a reconnect: the second run got variables of the library in place of the
// host's, and what a host's function had put there was freed.
#include "tests/client/ContentTest.h"

namespace {

// The first transfer never ends.
constexpr const char* kStallsOnce =
    R"({"on": "RETR", "nth": 1, "do": [{"normal": {"stall_after": 100, "gate": "never"}}]})";

std::string serving(const std::string& moreRules = "") {
  return R"({"tree": {"/a": {"size": 5000, "seed": 7}}, "rules": [)" + std::string(kStallsOnce) + moreRules +
         "]}";
}

// A host with a function of its own in slot 48, which takes over from the second run on.
class ReadingHost final : public TQXIP {
 public:
  ReadingHost() : TQXIP(nullptr) {}
  ~ReadingHost() = default;

  const fixture::ScriptedFtp* server = nullptr;
  char block[3] = "ab";  // no memory that the library could free
  QXBool answer = 1;
  void** blockGiven = nullptr;
  std::uint32_t* sizeGiven = nullptr;

  QXBool OnPoll(QXHostValue, QXHostValue, QXHostValue, QXBool* reconnect) override {
    server->waitAtGate("never");
    *reconnect = 1;
    return 0;
  }
  QXBool FTPReadFile(const char*, void** data, std::uint32_t* size, std::uint32_t, std::uint32_t, QXHostValue,
                     QXHostValue) override {
    blockGiven = data;
    sizeGiven = size;
    *data = block;
    *size = 2;
    return answer;
  }
};

class ReadAgain : public ContentTest {
 protected:
  void* data = &data;
  std::uint32_t size = 99;
};

TEST_F(ReadAgain, TheHostsFunctionGetsTheHostsOwnVariables) {
  for (const QXBool answer : {QXBool{0}, QXBool{1}}) {
    const fixture::ScriptedFtp server(serving());
    ReadingHost host;
    host.server = &server;
    host.answer = answer;
    host.FTPSetLogin(server.host().c_str(), "user", "secret", server.port(), 1);
    EXPECT_EQ(host.TQXIP::FTPReadFile("/a", &data, &size, 0, 3, 0, 0), 0) << "the first run was abandoned";
    EXPECT_EQ(host.blockGiven, &data);
    EXPECT_EQ(host.sizeGiven, &size);
    EXPECT_EQ(data, host.block);
    EXPECT_EQ(size, 2u);
  }
}

TEST_F(ReadAgain, TheBlockOfTheSecondRunIsTheHostsThoughTheResultIsZero) {
  const fixture::ScriptedFtp server(serving());
  loginAt(server);
  atGate(server, "never", reconnects);
  EXPECT_EQ(client.FTPReadFile("/a", &data, &size, 0, 0, 0, 0), 0);
  EXPECT_EQ(size, 5000u);
  ASSERT_NE(data, nullptr);
  EXPECT_TRUE(testing_support::Pattern(7).matches(0, data, size));
  EXPECT_EQ(client.FTPFreeFileAPI(data), 1);
}

TEST_F(ReadAgain, ASecondRunThatFailsLeavesNothing) {
  const fixture::ScriptedFtp server(serving(R"(, {"on": "RETR", "do": [{"reply": "550 No"}]})"));
  loginAt(server);
  atGate(server, "never", reconnects);
  EXPECT_EQ(client.FTPReadFile("/a", &data, &size, 0, 0, 0, 0), 0);
  EXPECT_EQ(data, nullptr);
  EXPECT_EQ(size, 0u);
}

}  // namespace
