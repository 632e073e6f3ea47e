// SPDX-License-Identifier: MIT
// How many replies of the server an operation waits for, the greeting included: at a server that is new to
// the client, and once more when its features are known.
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
    {"Existence", 5, 4,
     [](TQXIP& client, const std::string&) { return client.FTPFileExists("/a", 0, 0, 0) != 0; }},
    {"Size", 5, 4, [](TQXIP& client, const std::string&) { return client.FTPFileSize("/a", 0, 0, 0) == 4; }},
    {"Listing", 7, 6,
     [](TQXIP& client, const std::string&) {
       std::uint32_t count = 0;
       return client.FTPGetDirectory("/pub", nullptr, &count, "*.*", 0) != 0 && count == 2;
     }},
    {"Download", 7, 7,
     [](TQXIP& client, const std::string& local) {
       std::filesystem::remove(local);
       return client.FTPDownloadFile("/a", local.c_str(), 0) != 0;
     }},
    {"Upload", 7, 7,
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
  for (const int budget : {GetParam().unknown, GetParam().known}) {
    server.put(R"({"/pub/b": ""})");
    EXPECT_TRUE(GetParam().run(client, local));
    server.waitUntilAllClosed();
    const int waited = testing_support::repliesWaitedFor(server);
    EXPECT_LE(waited - before, budget);
    EXPECT_GE(waited - before, 4) << "greeting, USER, PASS and the work";
    before = waited;
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, ReplyBudget, testing::ValuesIn(kBudgets),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
