// SPDX-License-Identifier: MIT
// Each connection that broke gave a connected client one run more, also where its retry counter was spent: an
// operation never returned from a server that breaks every run off, and one that stalls held its caller for
// the time-outs of them all.
#include "tests/client/ContentTest.h"

namespace {

constexpr int kMostGranted = 3;
constexpr std::uint32_t kCounts[] = {0, 1, 3};
// The data connection is lost, the control connection serves on: the client stays connected.
constexpr const char* kBreaksOff = R"({"reply": "426 Connection lost"})";
// Where the limit is missing, runs end after so many all the same, and a test fails instead of hanging.
constexpr int kFarTooMany = 100;

// A client that is granted runs, and a host whose function stands in the listing's slot.
class GrantedClient final : public TQXIP {
 public:
  explicit GrantedClient(QXErrorInfo* pErrorInfo = nullptr) : TQXIP(pErrorInfo) {}
  ~GrantedClient() = default;

  int brokenOff = 0;  // how often OnIPError heard of it with the counter
  int listings = 0;

  void OnIPError(std::uint32_t error, const char* text, std::uint32_t* retries) override {
    if (error == 12030 && retries != nullptr) ++brokenOff;
    TQXIP::OnIPError(error, text, brokenOff < kFarTooMany ? retries : nullptr);
  }
  QXBool FTPGetDirectory(const char* path, QXDirEntry* entries, std::uint32_t* count, const char* pattern,
                         std::uint32_t retries) override {
    ++listings;
    return TQXIP::FTPGetDirectory(path, entries, count, pattern, retries);
  }
};

struct Operation {
  const char* name;
  const char* verb;  // of what breaks off
  bool (*run)(TQXIP& client, const char* local, std::uint32_t retries);
  // It asks the size inside each run: the end of that connection ends the client's being connected.
  bool nested = false;
};

const Operation kOperations[] = {
    {"DirExist", "MLSD",
     [](TQXIP& client, const char*, std::uint32_t retries) {
       return client.FTPDirExist("/d", retries, 0, 0) != 0;
     }},
    {"FileExists", "MLSD",
     [](TQXIP& client, const char*, std::uint32_t retries) {
       return client.FTPFileExists("/d", retries, 0, 0) != 0;
     }},
    {"FileSize", "MLSD",
     [](TQXIP& client, const char*, std::uint32_t retries) {
       return client.FTPFileSize("/d", retries, 0, 0) != 0;
     }},
    {"GetDirectory", "MLSD",
     [](TQXIP& client, const char*, std::uint32_t retries) {
       std::uint32_t count = 0;
       return client.FTPGetDirectory("/d", nullptr, &count, "*.*", retries) != 0;
     }},
    {"WriteFile", "STOR",
     [](TQXIP& client, const char*, std::uint32_t retries) {
       return client.FTPWriteFile("/a", "data", 4, 0, 0, retries, 0, 0) != 0;
     }},
    {"ReadFile", "RETR",
     [](TQXIP& client, const char*, std::uint32_t retries) {
       void* data = nullptr;
       std::uint32_t size = 0;
       const bool ok = client.FTPReadFile("/a", &data, &size, 0, retries, 0, 0) != 0;
       client.FTPFreeFileAPI(data);
       return ok;
     },
     true},
    {"CpyFile", "RETR",
     [](TQXIP& client, const char* local, std::uint32_t retries) {
       return client.FTPCpyFile("/a", local, nullptr, retries, 0, 0) != 0;
     },
     true},
};

class RetryLimitTest : public ContentTest {
 protected:
  static std::string breaking(const std::string& verb, const std::string& which = "") {
    return R"({"tree": {"/a": "text", "/d/x": "four"}, "rules": [{"on": ")" + verb + "\"" + which +
           R"(, "do": [)" + kBreaksOff + "]}]}";
  }
  static void connect(TQXIP& other, const fixture::Server& server) {
    ASSERT_EQ(other.FTPConnect(server.host().c_str(), "user", "secret", server.port(), 1, 0, nullptr), 1);
  }
};

class EachOperation : public RetryLimitTest, public testing::WithParamInterface<Operation> {
 protected:
  // How often the operation ran. Without an error record the end of a connection does not reach the client:
  // it stays connected.
  int runsAt(const fixture::ScriptedFtp& server, std::uint32_t retries) {
    GrantedClient host;
    connect(host, server);
    succeeded = GetParam().run(host, localName(local).c_str(), retries);
    return server.commandCount(GetParam().verb);
  }

  bool succeeded = false;
};

TEST_P(EachOperation, EndsThreeRunsBehindTheHostsOwnRetries) {
  for (const std::uint32_t retries : kCounts) {
    const fixture::ScriptedFtp server(breaking(GetParam().verb));
    EXPECT_EQ(runsAt(server, retries), 1 + static_cast<int>(retries) + kMostGranted);
    EXPECT_FALSE(succeeded);
  }
}

TEST_P(EachOperation, SucceedsInTheLastRunThatItIsGranted) {
  const fixture::ScriptedFtp server(
      breaking(GetParam().verb, ", \"first\": " + std::to_string(kMostGranted)));
  EXPECT_EQ(runsAt(server, 0), 1 + kMostGranted);
  EXPECT_EQ(succeeded, GetParam().name != std::string("FileExists"));  // of a directory "no" is the answer
}

TEST_P(EachOperation, HasAllTheRetriesOfTheHost) {
  const fixture::ScriptedFtp server(
      breaking(GetParam().verb, ", \"first\": " + std::to_string(2 * kMostGranted)));
  EXPECT_EQ(runsAt(server, 0xFFFFFFFF), 1 + 2 * kMostGranted);
}

INSTANTIATE_TEST_SUITE_P(Operations, EachOperation, testing::ValuesIn(kOperations),
                         [](const auto& instance) { return instance.param.name; });

// Each run of these has a connection of its own, which counts as the client's while it is open.
TEST_F(RetryLimitTest, HoldsForRunsWithConnectionsOfTheirOwn) {
  for (const Operation& operation : kOperations) {
    if (operation.nested) continue;
    const fixture::ScriptedFtp server(breaking(operation.verb));
    GrantedClient host(&record);
    host.FTPSetLogin(server.host().c_str(), "user", "secret", server.port(), 1);
    EXPECT_FALSE(operation.run(host, localName(local).c_str(), 2)) << operation.name;
    EXPECT_EQ(server.commandCount(operation.verb), 1 + 2 + kMostGranted) << operation.name;
    EXPECT_EQ(record.nError, 12030u) << operation.name;
  }
}

struct Stall {
  const char* rules;
  int runs;
};

TEST_F(RetryLimitTest, AServerThatStallsHoldsItsCallerForOneRunMore) {
  shortenTimeouts(std::chrono::milliseconds(3'000));
  const Stall stalls[] = {{R"([{"on": "STOR", "do": ["silent"]}])", 1 + 1},
                          {R"([{"on": "STOR", "nth": 1, "do": [{"reply": "426 Lost"}]},
                               {"on": "STOR", "do": ["silent"]}])",
                           1 + 1 + 1}};
  for (const auto& [rules, runs] : stalls) {
    const fixture::ScriptedFtp server("{\"rules\": " + std::string(rules) + "}");
    GrantedClient host(&record);
    host.FTPSetLogin(server.host().c_str(), "user", "secret", server.port(), 1);
    EXPECT_EQ(host.FTPWriteFile("/a", "data", 4, 0, 0, 0, 0, 0), 0);
    EXPECT_EQ(server.commandCount("STOR"), runs);
    EXPECT_EQ(record.nError, 12002u);
  }
}

// How a server receives a client that it has closed the connection of.
struct Reception {
  const char* name;
  const char* steps;
};

constexpr Reception kReceptions[] = {{"HangsUp", R"("close")"},
                                     {"SaysFarewell", R"({"reply": "421 Shutting down"}, "close")"},
                                     {"KeepsSilent", R"("silent")"}};

// The counter is armed, but the log-in that each run begins with is in vain.
class ConnectionThatStaysDead : public RetryLimitTest, public testing::WithParamInterface<Reception> {
 protected:
  // A client whose connection the server has closed, and which finds no other.
  void connectForTheLastTime(GrantedClient& host) const {
    server.reconfigure(R"({"rules": []})");
    connect(host, server);
    internet::Timeouts timeouts;
    timeouts.reply = std::chrono::milliseconds(300);
    host.m_pInternetSession->SetTimeouts(timeouts);
    server.reconfigure(std::string(R"({"rules": [{"on": "CONNECT", "do": [)") + GetParam().steps + "]}]}");
    server.disconnect();
    server.waitUntilAllClosed();
  }

  const fixture::ScriptedFtp server{R"({"tree": {"/d/": {}}})"};
};

TEST_P(ConnectionThatStaysDead, GetsTheHostsOwnRunsAlone) {
  for (QXErrorInfo* errors : {static_cast<QXErrorInfo*>(nullptr), &record}) {
    for (const std::uint32_t retries : {0u, 1u}) {
      GrantedClient host(errors);
      connectForTheLastTime(host);
      const std::size_t before = server.connections().size();
      std::uint32_t count = 0;
      EXPECT_EQ(host.FTPDirExist("/d", retries, 0, 0), 0);
      EXPECT_EQ(host.FTPGetDirectory("/d", nullptr, &count, "*.*", retries), 0);
      EXPECT_EQ(server.connections().size() - before, 2 * (1u + retries));
      EXPECT_EQ(host.m_bConnected, 1);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Receptions, ConnectionThatStaysDead, testing::ValuesIn(kReceptions),
                         [](const auto& instance) { return instance.param.name; });

class HostsFunctionInTheSlot : public RetryLimitTest {
 protected:
  void SetUp() override { connect(host, server); }
  void list(std::uint32_t retries) {
    std::uint32_t count = 0;
    EXPECT_EQ(host.FTPGetDirectory("/d", nullptr, &count, "*.*", retries), 0);
  }

  const fixture::ScriptedFtp server{breaking("MLSD")};
  GrantedClient host;
};

// Each call of the function would have been granted runs of its own, inside the one before it.
TEST_F(HostsFunctionInTheSlot, SharesTheGrantedRunsOfTheCallThatItRetries) {
  list(2);
  EXPECT_EQ(host.listings, 1 + 2 + kMostGranted);
}

TEST_F(HostsFunctionInTheSlot, IsGrantedRunsInEachCallOfTheHost) {
  list(0);
  list(0);
  EXPECT_EQ(host.listings, 2 * (1 + kMostGranted));
}

TEST_F(HostsFunctionInTheSlot, IsGrantedRunsInEachListingOfACount) {
  EXPECT_EQ(host.FTPCountFolderItems("/d", nullptr, nullptr, 1), 0);
  EXPECT_EQ(host.listings, (1 + 1 + kMostGranted) + (1 + kMostGranted));
}

}  // namespace
