// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <fstream>

#include "hosts/shared/Trees.h"
#include "tests/support/ScratchFolder.h"

namespace hosts {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class LocalTree : public testing::Test {
 protected:
  LocalTree() {
    fs::create_directories(root / "sub" / "deep");
    write("a.txt", "hello");
    write("sub/deep/b", "b");
    write(".hidden", "x");
  }

  void write(const std::string& name, const std::string& content) const {
    std::ofstream(root / name, std::ios::binary) << content;
  }

  std::vector<std::string> paths(const Walk& walk = {}) const {
    std::vector<std::string> found;
    for (const Entry& entry : readLocalTree(root, walk).entries) found.push_back(entry.path);
    return found;
  }

  const testing_support::ScratchFolder scratch;
  const fs::path root = scratch.path() / "root";
};

TEST_F(LocalTree, HasWhatIsBelowAFolder) {
  EXPECT_THAT(paths(), ElementsAre("a.txt", "sub", "sub/deep", "sub/deep/b"));
  EXPECT_THAT(paths({.leavesDotNamesOut = false}),
              ElementsAre(".hidden", "a.txt", "sub", "sub/deep", "sub/deep/b"));
  EXPECT_THAT(paths({.isRecursive = false}), ElementsAre("a.txt", "sub"));
}

TEST_F(LocalTree, TellsSizesAndTimes) {
  using namespace std::chrono;
  const sys_seconds when = sys_days{year{2024} / 2 / 29} + 12h + 34min + 56s;
  std::error_code error;
  setChanged(root / "a.txt", when, error);
  ASSERT_FALSE(error) << error.message();
  const Tree tree = readLocalTree(root);
  EXPECT_EQ(tree.entries[0].size, 5U);
  EXPECT_EQ(tree.entries[0].time->at, when);
  EXPECT_EQ(tree.entries[1].kind, Kind::folder);
}

TEST_F(LocalTree, AMissingFolderIsNoEmptyOne) {
  const Tree tree = readLocalTree(root / "none");
  ASSERT_EQ(tree.problems.size(), 1U);
  EXPECT_EQ(tree.problems[0].path, "");
  EXPECT_NE(tree.problems[0].text, "");
}

TEST_F(LocalTree, CanBeCancelled) {
  const Tree tree = readLocalTree(root, {.isCancelled = [] { return true; }});
  EXPECT_TRUE(tree.isCancelled);
  EXPECT_FALSE(tree.isWhole());
}

#if !defined(_WIN32)
TEST_F(LocalTree, TellsLinksOrFollowsThem) {
  fs::create_symlink(root / "a.txt", root / "to-file");
  fs::create_directory_symlink(root / "sub" / "deep", root / "to-folder");
  EXPECT_THAT(paths(), ElementsAre("a.txt", "sub", "sub/deep", "sub/deep/b", "to-file", "to-folder"));
  EXPECT_EQ(readLocalTree(root).entries[4].kind, Kind::link);
  EXPECT_THAT(paths({.links = Links::followed}),
              ElementsAre("a.txt", "sub", "sub/deep", "sub/deep/b", "to-file", "to-folder", "to-folder/b"));
}

TEST_F(LocalTree, ALinkToAFolderAboveIsToldOfAndNotFollowed) {
  fs::create_directory_symlink(root, root / "sub" / "back");
  fs::create_symlink("nowhere", root / "dangling");
  const Tree tree = readLocalTree(root, {.links = Links::followed});
  ASSERT_EQ(tree.problems.size(), 2U);
  EXPECT_EQ(tree.problems[0].path, "dangling");
  EXPECT_EQ(tree.problems[1].path, "sub/back");
  EXPECT_EQ(tree.entries.size(), 5U);
}
#endif

}  // namespace
}  // namespace hosts
