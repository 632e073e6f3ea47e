// SPDX-License-Identifier: MIT
// Files and folders of real servers made, renamed and removed, under odd names too; and what is refused.
#include <fstream>

#include "tests/client/RealChangesTest.h"

namespace {

class RealChanges : public RealChangesTest {
 protected:
  const std::string localPath = testing_support::localName(local);

  // Of the created directory, below the own folder.
  std::string createNew(const std::string& baseName) {
    char created[256] = "";
    EXPECT_EQ(client.FTPCreateNewDir(own.c_str(), created, baseName.c_str(), 0), 1) << baseName;
    const std::string path = created;
    return path.starts_with(own) ? path.substr(own.size()) : "not in the folder: " + path;
  }
};

TEST_P(RealChanges, RenameAFileAndADirectory) {
  make("/a");
  make("/d/inside");
  EXPECT_EQ(renameFile("/a", "/b"), 1);
  EXPECT_EQ(renameFile("/d", "/e"), 1);
  EXPECT_EQ(server.names(own), (Names{"b", "e"}));
  EXPECT_EQ(server.content(own + "/b"), "content");
  EXPECT_EQ(server.names(own + "/e"), Names{"inside"});
  EXPECT_TRUE(IsBlank(record));
}

TEST_P(RealChanges, RemoveAFile) {
  make("/a");
  make("/b");
  EXPECT_EQ(removeFile("/a"), 1);
  EXPECT_EQ(server.names(own), Names{"b"});
  EXPECT_TRUE(IsBlank(record));
}

TEST_P(RealChanges, RemoveAnEmptyDirectoryAndCountAMissingOneAsRemoved) {
  make("/d/", "{}");
  EXPECT_EQ(removeDirectory("/d"), 1);
  EXPECT_FALSE(isThere("/d"));
  EXPECT_EQ(removeDirectory("/d"), 1);
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_P(RealChanges, KeepADirectoryThatIsNotEmpty) {
  make("/d/inside");
  EXPECT_EQ(removeDirectory("/d"), 0);
  expectReport("a directory with content");
  EXPECT_EQ(server.names(own + "/d"), Names{"inside"});
}

// A link to a directory counted as a file: it was not found, and so as removed while it stayed.
TEST_P(RealChanges, ALinkToADirectoryIsADirectoryWhoseContentStays) {
  make("/d/inside");
  make("/link", R"({"link": "d"})");
  EXPECT_EQ(client.FTPDirExist((own + "/link").c_str(), 0, 0, 0), 1);
  EXPECT_EQ(client.FTPFileExists((own + "/link").c_str(), 0, 0, 0), 0);
  std::uint32_t files = 9;
  std::uint32_t directories = 9;
  EXPECT_EQ(client.FTPCountFolderItems(own.c_str(), &files, &directories, 0), 1);
  EXPECT_EQ(files, 0u);
  EXPECT_EQ(directories, 2u);
  // One server follows links and does not tell of them, another takes no link to a directory away.
  const bool stays = kind == "pyftpdlib" || kind == "inetutils-ftpd";
  EXPECT_EQ(removeDirectory("/link"), stays ? 0 : 1);
  EXPECT_EQ(isThere("/link"), stays);
  EXPECT_EQ(server.names(own + "/d"), Names{"inside"});
}

TEST_P(RealChanges, CreateADirectoryWithThoseAbove) {
  EXPECT_EQ(createDirectory("/a/b c/d"), 1);
  EXPECT_EQ(server.names(own + "/a/b c"), Names{"d"});
  EXPECT_EQ(createDirectory("/a/b c/d"), 1) << "it is there";
  EXPECT_EQ(client.count("OnIPError"), 0u);
}

TEST_P(RealChanges, FindFreeNamesForNewDirectories) {
  EXPECT_EQ(createNew("New"), "/New");
  EXPECT_EQ(createNew("New"), "/New (1)");
  EXPECT_EQ(server.names(own), (Names{"New", "New (1)"}));
}

TEST_P(RealChanges, RefuseWhatIsMissing) {
  EXPECT_EQ(renameFile("/none", "/b"), 0);
  expectReport("renaming");
  EXPECT_EQ(removeFile("/none"), 0);
  expectReport("removing");
  EXPECT_EQ(copyFile(own + "/none", own + "/b"), 0);
  expectReport("copying within the server");
  EXPECT_EQ(copyFile(own + "/none", localPath), 0);
  expectReport("copying from the server");
  EXPECT_EQ(copyFile(localPath, own + "/b"), 0);
  expectReport("copying to the server");
  EXPECT_EQ(moveFile(own + "/none", own + "/b"), 0);
  expectReport("moving");
  EXPECT_EQ(server.names(own), Names{});
  EXPECT_FALSE(exists());
}

TEST_P(RealChanges, RefuseToPutThingsIntoAMissingFolder) {
  make("/a");
  EXPECT_EQ(writeFile("/none/a", "content"), 0);
  expectReport("writing");
  EXPECT_EQ(renameFile("/a", "/none/a"), 0);
  expectReport("renaming");
  EXPECT_EQ(server.names(own), Names{"a"});
}

INSTANTIATE_TEST_SUITE_P(Kinds, RealChanges, inBothModes(), serverAndModeName);

constexpr const char* kNames[] = {" with  blanks", "100%25 #1", "what?", "a;type=i", "-rf", "d\xc3\xbcnn"};

class RealNames : public RealChangesTest {};

TEST_P(RealNames, GoThroughEveryOperation) {
  for (const char* directory : {"/one/", "/two/", "/three/"}) make(directory, "{}");
  for (const std::string name : kNames) {
    SCOPED_TRACE(name);
    // The copy on the disk has the target's name, so the disk has to take that.
    const bool diskTakesIt = std::ofstream(folder.file(name)).good();
    std::string read;
    EXPECT_EQ(writeFile("/one/" + name, "in " + name), 1);
    EXPECT_EQ(server.names(own + "/one"), Names{name});
    EXPECT_EQ(readFile("/one/" + name, read), 1);
    EXPECT_EQ(read, "in " + name);
    EXPECT_EQ(renameFile("/one/" + name, "/two/" + name), 1);
    EXPECT_EQ(server.names(own + "/two"), Names{name});
    EXPECT_EQ(copyFile(own + "/two/" + name, own + "/three/" + name), diskTakesIt ? 1 : 0);
    EXPECT_EQ(server.names(own + "/three"), diskTakesIt ? Names{name} : Names{});
    EXPECT_EQ(removeFile("/two/" + name), 1);
    EXPECT_EQ(removeFile("/three/" + name), diskTakesIt ? 1 : 0);
    for (const char* directory : {"/one", "/two", "/three"})
      EXPECT_EQ(server.names(own + directory), Names{});
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, RealNames,
                         testing::Combine(testing::ValuesIn(kServerKinds), testing::Values(true)),
                         serverAndModeName);

// In active mode only what moves content has to do with the mode.
class RealNamesInActiveMode : public RealChangesTest {};

TEST_P(RealNamesInActiveMode, GoBothWays) {
  make("/d/", "{}");
  for (const std::string name : kNames) {
    SCOPED_TRACE(name);
    const std::string path = own + "/d/" + name;
    write("in " + name);
    EXPECT_EQ(upload(path.c_str()), 1);
    EXPECT_EQ(server.names(own + "/d"), Names{name});
    std::filesystem::remove(local);
    EXPECT_EQ(download(path.c_str()), 1);
    EXPECT_EQ(content(), "in " + name);
    EXPECT_EQ(removeFile("/d/" + name), 1);
  }
  EXPECT_EQ(server.names(own + "/d"), Names{});
  EXPECT_TRUE(IsBlank(record));
}

INSTANTIATE_TEST_SUITE_P(Kinds, RealNamesInActiveMode,
                         testing::Combine(testing::ValuesIn(kServerKinds), testing::Values(false)),
                         serverAndModeName);

// Servers whose processes have no more rights than the folder's owner; pyftpdlib keeps those of the test.
class RealRights : public RealChangesTest {};

TEST_P(RealRights, AReadOnlyFolderStaysAsItIs) {
  make("/locked/a");
  make("/locked/sub/", "{}");
  make("/locked/", R"({"mode": "r-xr-xr-x"})");
  EXPECT_EQ(writeFile("/locked/b", "content"), 0);
  expectReport("writing");
  EXPECT_EQ(renameFile("/locked/a", "/locked/b"), 0);
  expectReport("renaming");
  EXPECT_EQ(removeFile("/locked/a"), 0);
  expectReport("removing a file");
  EXPECT_EQ(removeDirectory("/locked/sub"), 0);
  expectReport("removing a directory");
  EXPECT_EQ(createDirectory("/locked/new"), 0);
  expectReport("creating a directory");
  EXPECT_EQ(moveFile(own + "/locked/a", testing_support::localName(local)), 0);
  expectReport("moving away");
  EXPECT_EQ(server.names(own + "/locked"), (Names{"a", "sub"}));
}

INSTANTIATE_TEST_SUITE_P(Kinds, RealRights,
                         testing::Combine(testing::Values("vsftpd", "proftpd", "pure-ftpd", "inetutils-ftpd"),
                                          testing::Bool()),
                         serverAndModeName);

}  // namespace
