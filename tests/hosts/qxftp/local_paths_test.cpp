// SPDX-License-Identifier: MIT
#include "hosts/qxftp/LocalPaths.h"

#include <gmock/gmock.h>

#include <fstream>

#include "hosts/qxftp/Outcome.h"
#include "tests/support/ScratchFolder.h"

namespace qxftp {
namespace {

using testing::ElementsAre;

class LocalPaths : public testing::Test {
 protected:
  LocalPaths() {
    for (const char* name : {"b.txt", "a.txt", "c.doc", ".hidden.txt"})
      std::ofstream(scratch.path() / name) << "x";
  }
  const testing_support::ScratchFolder scratch;
};

TEST_F(LocalPaths, WildcardsStandForTheNamesThatMatch) {
  EXPECT_THAT(expandedLocally(scratch.path() / "*.txt", true),
              ElementsAre(scratch.path() / "a.txt", scratch.path() / "b.txt"));
  EXPECT_THAT(expandedLocally(scratch.path() / "?.d*", true), ElementsAre(scratch.path() / "c.doc"));
  EXPECT_THAT(expandedLocally(scratch.path() / "*.none", true), ElementsAre());
}

TEST_F(LocalPaths, AShellHasPutNamesInTheirPlaceAlready) {
  EXPECT_THAT(expandedLocally("*.txt", false), ElementsAre("*.txt"));
  EXPECT_THAT(expandedLocally("plain.txt", true), ElementsAre("plain.txt"));
}

TEST_F(LocalPaths, AFolderIsOneThatIsThereOrIsWrittenSo) {
  EXPECT_TRUE(isLocalFolder(scratch.path()));
  EXPECT_TRUE(isLocalFolder(scratch.path() / "none" / ""));
  EXPECT_FALSE(isLocalFolder(scratch.path() / "none"));
  EXPECT_FALSE(isLocalFolder(scratch.path() / "a.txt"));
}

TEST_F(LocalPaths, AFileIsNoFolder) {
  EXPECT_THROW(needLocalFolder(scratch.path() / "a.txt"), Failure);
  needLocalFolder(scratch.path() / "new" / "deep");
  EXPECT_TRUE(isLocalFolder(scratch.path() / "new" / "deep"));
}

}  // namespace
}  // namespace qxftp
