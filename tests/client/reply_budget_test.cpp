// SPDX-License-Identifier: MIT
// How many replies of the server an operation waits for, the greeting included: at a server that is new to
// the client, and when it is known what it can do and that it takes the login and more in one packet.
#include "tests/client/TransferTest.h"
#include "tests/support/RepliesWaitedFor.h"

namespace {

struct Budget {
  const char* name;
  int unknown;
  int known;
  bool (*run)(TQXIP& client, const std::string& local);
};

const Budget kBudgets[] = {
    {"Existence", 5, 2,
     [](TQXIP& client, const std::string&) { return client.FTPFileExists("/a", 0, 0, 0) != 0; }},
    {"Size", 5, 2, [](TQXIP& client, const std::string&) { return client.FTPFileSize("/a", 0, 0, 0) == 4; }},
    {"Listing", 7, 4,
     [](TQXIP& client, const std::string&) {
       std::uint32_t count = 0;
       return client.FTPGetDirectory("/pub", nullptr, &count, "*.*", 0) != 0 && count == 2;
     }},
    {"Download", 6, 4,
     [](TQXIP& client, const std::string& local) {
       std::filesystem::remove(local);
       return client.FTPDownloadFile("/a", local.c_str(), 0) != 0;
     }},
    {"Upload", 6, 4,
     [](TQXIP& client, const std::string& local) {
       std::ofstream(local) << "content";
       return client.FTPUploadFile("/a", local.c_str(), 0) != 0;
     }},
    {"Removal", 4, 4,
     [](TQXIP& client, const std::string&) { return client.FTPRmvFile("/pub/b", 0, 0, 0, 0) != 0; }},
};

class ReplyBudget : public TransferTest, public testing::WithParamInterface<Budget> {};

TEST_P(ReplyBudget, IsKept) {
  const fixture::ScriptedFtp server(std::string_view(R"({"tree": {"/a": "four", "/pub/c": ""}})"));
  loginAt(server);
  int before = 0;
  constexpr int kAny = 100;  // on the way to know it
  for (const int budget : {GetParam().unknown, kAny, GetParam().known}) {
    server.put(R"({"/pub/b": ""})");
    EXPECT_TRUE(GetParam().run(client, local));
    server.waitUntilAllClosed();
    const int waited = testing_support::repliesWaitedFor(server);
    EXPECT_LE(waited - before, budget);
    EXPECT_GE(waited - before, 2) << "the greeting and the work";
    before = waited;
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, ReplyBudget, testing::ValuesIn(kBudgets),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
