// SPDX-License-Identifier: MIT
// Queries and listings of names with which something could go wrong.
#include <nlohmann/json.hpp>

#include "tests/client/ChangeTest.h"

namespace {

using nlohmann::json;

// By the features of the server.
class OddNames : public ServerTest, public testing::WithParamInterface<const char*> {
 protected:
  const fixture::ScriptedFtp server{json{{"features", json::parse(GetParam())}}};

  void SetUp() override { loginAt(server); }
};

// Each in a directory of its own: two of them are patterns that match others, too.
TEST_P(OddNames, AreAskedForAsTheyAre) {
  int number = 0;
  for (const std::string& name : kOddNames) {
    const std::string file = "/" + std::to_string(number) + "/" + name;
    const std::string directory = "/" + std::to_string(number) + ".d/" + name;
    ++number;
    server.put(json{{file, "12345"}, {directory + "/", json::object()}}.dump());
    EXPECT_EQ(client.FTPFileExists(file.c_str(), 0, 0, 0), 1) << name;
    EXPECT_EQ(client.FTPDirExist(file.c_str(), 0, 0, 0), 0) << name;
    EXPECT_EQ(client.FTPFileSize(file.c_str(), 0, 0, 0), 5u) << name;
    EXPECT_EQ(client.FTPDirExist(directory.c_str(), 0, 0, 0), 1) << name;
    EXPECT_EQ(client.FTPFileExists(directory.c_str(), 0, 0, 0), 0) << name;
  }
}

TEST_P(OddNames, AreListedAsTheyAre) {
  json files;
  for (const std::string& name : kOddNames) files["/odd/" + name] = "x";
  server.put(files.dump());
  std::uint32_t count = 0;
  ASSERT_EQ(client.FTPGetDirectory("/odd", nullptr, &count, "*.*", 0), 1);
  std::vector<QXDirEntry> entries(count);
  ASSERT_EQ(client.FTPGetDirectory("/odd", entries.data(), &count, "*.*", 0), 1);
  Names names;
  for (const QXDirEntry& entry : entries) names.emplace_back(entry.szName);
  EXPECT_THAT(names, testing::UnorderedElementsAreArray(kOddNames));
}

TEST_P(OddNames, AreDirectoriesToListAsOthersAre) {
  int number = 0;
  for (const std::string& name : kOddNames) {
    const std::string directory = "/" + std::to_string(number++) + "/" + name;
    server.put(json{{directory + "/inside", "x"}}.dump());
    std::uint32_t files = 0;
    std::uint32_t directories = 77;
    EXPECT_EQ(client.FTPCountFolderItems(directory.c_str(), &files, &directories, 0), 1) << name;
    EXPECT_EQ(files, 1u) << name;
    EXPECT_EQ(directories, 0u) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(Features, OddNames,
                         testing::Values(R"(["mlst", "size", "epsv", "utf8"])", R"(["size", "epsv"])"),
                         [](const auto& instance) { return instance.index == 0 ? "Mlst" : "List"; });

}  // namespace
