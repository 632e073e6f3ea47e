// SPDX-License-Identifier: MIT
// The file of the sites, with other programs, other users and a broken one; and passwords in it.
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <thread>

#include "hosts/qxbrowse/sites/Protection.h"
#include "hosts/qxbrowse/sites/SiteFile.h"
#include "hosts/qxbrowse/ui/System.h"
#include "tests/hosts/qxbrowse/SomeSites.h"
#include "tests/support/ScratchFolder.h"

namespace {

using browse::BrokenSites;
using browse::Site;
using browse::SiteFile;
using some_sites::siteOf;
using testing::SizeIs;

namespace fs = std::filesystem;

class TheSiteFile : public testing::Test {
 protected:
  [[nodiscard]] std::string content() const {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  void write(const std::string& text) const { std::ofstream(path, std::ios::binary) << text; }
  // Names of files beside it.
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(scratch.path()))
      found.push_back(entry.path().filename().string());
    return found;
  }

  const testing_support::ScratchFolder scratch;
  const fs::path path = scratch.path() / "sites.ini";
  const SiteFile file{path};
};

TEST_F(TheSiteFile, NeedsNotBeThere) {
  EXPECT_TRUE(file.sites().empty());
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(TheSiteFile, ComesWithItsFolderAndTheFirstSite) {
  const SiteFile deep(scratch.path() / "a" / "b" / "sites.ini");
  deep.put(siteOf("one"));
  EXPECT_THAT(deep.sites(), testing::ElementsAre(siteOf("one")));
}

TEST_F(TheSiteFile, LeavesNothingBesideItself) {
  file.put(siteOf("one"));
  file.remove("one");
  EXPECT_THAT(names(), testing::ElementsAre("sites.ini"));
}

TEST_F(TheSiteFile, HasTheSitesOfAllProgramsThatChangedItAtATime) {
  constexpr int kPrograms = 4;
  constexpr int kSites = 10;
  {
    std::vector<std::jthread> programs;
    for (int program = 0; program < kPrograms; ++program) {
      programs.emplace_back([this, program] {
        const SiteFile own(path);
        for (int site = 0; site < kSites; ++site) {
          own.put(siteOf(std::to_string(program) + "-" + std::to_string(site)));
        }
      });
    }
  }
  EXPECT_THAT(file.sites(), SizeIs(kPrograms * kSites));
}

// A program that read the file at that moment made the change of another fail.
// Nobody reads all the time: on a crowded machine that would leave the writer no moment within its patience.
TEST_F(TheSiteFile, IsChangedWhileOthersReadIt) {
  constexpr int kChanges = 10;
  constexpr int kReads = 20;
  file.put(siteOf("0"));
  for (int change = 1; change < kChanges; ++change) {
    const std::jthread reader([this] {
      for (int read = 0; read < kReads; ++read) EXPECT_FALSE(file.sites().empty());
    });
    EXPECT_NO_THROW(file.put(siteOf(std::to_string(change))));
  }
  EXPECT_THAT(file.sites(), SizeIs(kChanges));
}

TEST_F(TheSiteFile, IsNotWrittenWhileItIsBroken) {
  const std::string broken = "[a]\nhost=h\nport=many\n";
  write(broken);
  EXPECT_THROW(static_cast<void>(file.sites()), BrokenSites);
  EXPECT_THROW(file.put(siteOf("one")), BrokenSites);
  EXPECT_THROW(file.remove("a"), BrokenSites);
  EXPECT_EQ(content(), broken);
}

TEST_F(TheSiteFile, IsSetAsideUnderANameThatNoFileHad) {
  for (const char* name : {"sites.broken-1.ini", "sites.broken-2.ini"}) {
    write(name);
    EXPECT_EQ(file.setAside().filename(), name);
  }
  EXPECT_TRUE(file.sites().empty());
  EXPECT_THAT(names(), testing::UnorderedElementsAre("sites.broken-1.ini", "sites.broken-2.ini"));
}

TEST_F(TheSiteFile, StaysAsItWasWhenItCannotBeReplaced) {
  file.put(siteOf("one"));
  const std::string before = content();
  HANDLE const reader =
      CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(reader, INVALID_HANDLE_VALUE);
  EXPECT_THROW(file.put(siteOf("two")), std::system_error);
  EXPECT_EQ(content(), before);
  EXPECT_THAT(names(), testing::ElementsAre("sites.ini"));
  CloseHandle(reader);
}

TEST(APassword, ComesBackFromItsProtection) {
  const std::string password =
      "s\xC3\xA9"
      "cret \x01";
  const std::string kept = browse::protect(password);
  EXPECT_EQ(kept.find("cret"), std::string::npos);
  EXPECT_EQ(kept.find_first_of("\r\n"), std::string::npos);
  EXPECT_EQ(browse::unprotect(kept), password);
  EXPECT_EQ(browse::unprotect(browse::protect("")), "");
}

TEST(APassword, IsNoneWhereSomebodyElseHasProtectedIt) {
  std::string other = browse::protect("secret");
  char& last = other[other.size() - 8];
  last = last == 'A' ? 'B' : 'A';
  EXPECT_FALSE(browse::unprotect(other));
  EXPECT_FALSE(browse::unprotect("no base64!"));
  EXPECT_FALSE(browse::unprotect("AAAA"));
  EXPECT_FALSE(browse::unprotect(""));
}

TEST(APassword, IsOverwritten) {
  std::string password(40, 'x');
  const char* const bytes = password.data();
  browse::wipe(password);
  EXPECT_TRUE(password.empty());
  EXPECT_EQ(std::string(bytes, 40), std::string(40, '\0'));
}

}  // namespace
