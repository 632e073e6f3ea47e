// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/LocalFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "tests/support/ScratchFolder.h"

namespace {

using namespace browse;
using testing::ElementsAre;
using testing::IsEmpty;

class ALocalFolder : public testing::Test {
 protected:
  [[nodiscard]] std::vector<Item> read() const {
    std::vector<Item> items = readLocalFolder(folder);
    std::ranges::sort(items, {}, &Item::name);
    return items;
  }

  const testing_support::ScratchFolder scratch;
  const std::wstring folder = scratch.path().wstring();
};

TEST_F(ALocalFolder, HasItsFilesAndFolders) {
  std::filesystem::create_directory(scratch.path() / L"b\u4E2D");
  std::ofstream(scratch.path() / L"a.txt") << "hello";
  const std::vector<Item> items = read();
  ASSERT_EQ(items.size(), 2U);
  EXPECT_EQ(items[0].name, L"a.txt");
  EXPECT_EQ(items[0].size, 5U);
  EXPECT_GT(items[0].time, 0);
  EXPECT_EQ(items[1].name, L"b\u4E2D");
  EXPECT_TRUE(items[1].isFolder);
}

TEST_F(ALocalFolder, CanBeEmpty) { EXPECT_THAT(read(), IsEmpty()); }

TEST_F(ALocalFolder, ThatIsMissingIsAnError) {
  EXPECT_THROW(readLocalFolder(folder + L"\\missing"), std::system_error);
}

TEST_F(ALocalFolder, IsMadeAndRenamedButNeverOverAnother) {
  createLocalFolder(folder + L"\\a");
  renameLocal(folder + L"\\a", folder + L"\\b");
  EXPECT_THROW(createLocalFolder(folder + L"\\b"), std::system_error);
  createLocalFolder(folder + L"\\c");
  EXPECT_THROW(renameLocal(folder + L"\\b", folder + L"\\c"), std::system_error);
  EXPECT_EQ(read().size(), 2U);
}

TEST(TheDrives, AreWhatIsAboveAll) {
  const std::vector<Item> drives = readLocalFolder({});
  EXPECT_TRUE(
      std::ranges::any_of(drives, [](const Item& item) { return item.name == L"C:\\" && item.isFolder; }));
}

}  // namespace
