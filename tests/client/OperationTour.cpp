// SPDX-License-Identifier: MIT
#include "tests/client/OperationTour.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "framework/platform/file.h"
#include "support/BoundedText.h"
#include "tests/support/ScratchFolder.h"

namespace operation_tour {

namespace {

class Tour {
 public:
  Tour(TQXIP& guide, const Place& start)
      : client(guide), folder(start.remote + "/tour"), localFolder(start.local) {}

  void run() {
    makeFolder();
    writeAndRead();
    transfer();
    copyAndMove();
    list();
    remove();
  }

 private:
  [[nodiscard]] std::string remote(const char* name) const { return folder + '/' + name; }
  [[nodiscard]] std::string local(const char* name) const { return localFolder + '/' + name; }
  static std::string contentOf(const std::string& path) {
    platform::File file;
    char content[100];
    if (!file.open(path.c_str(), platform::FileAccess::read, platform::FileCreation::openExisting)) return "";
    return {content, static_cast<std::size_t>(std::max<std::int64_t>(file.read(content, sizeof content), 0))};
  }
  [[nodiscard]] bool writes(const std::string& path, const char* text, bool append) {
    const auto size = static_cast<std::uint32_t>(std::strlen(text));
    return client.FTPWriteFile(path.c_str(), text, size, append ? 1 : 0, 0, 0, 0, 0) == 1;
  }
  [[nodiscard]] bool copies(const std::string& from, const std::string& to) {
    return client.FTPCpyFile(from.c_str(), to.c_str(), nullptr, 0, 0, 0) == 1;
  }

  void makeFolder() {
    EXPECT_EQ(client.FTPDirExist(folder.c_str(), 0, 0, 0), 0);
    EXPECT_EQ(client.FTPCreateDir(folder.c_str(), 0, 0, 0), 1);
    EXPECT_EQ(client.FTPDirExist(folder.c_str(), 0, 0, 0), 1);
    EXPECT_EQ(client.FTPIsDirectory(folder.c_str(), 0, 0, 0), 1);
    EXPECT_EQ(client.FTPHasSubDir(folder.c_str(), 0), 0);
    EXPECT_EQ(client.FTPCreateDir(remote("sub").c_str(), 0, 0, 0), 1);
    EXPECT_EQ(client.FTPHasSubDir(folder.c_str(), 0), 1);
  }

  void writeAndRead() {
    const std::string file = remote("file");
    EXPECT_TRUE(writes(file, "content", false));
    EXPECT_TRUE(writes(file, " and more", true));
    EXPECT_EQ(client.FTPFileExists(file.c_str(), 0, 0, 0), 1);
    EXPECT_EQ(client.FTPFileSize(file.c_str(), 0, 0, 0), 16u);
    void* data = nullptr;
    std::uint32_t size = 0;
    EXPECT_EQ(client.FTPReadFile(file.c_str(), &data, &size, 0, 0, 0, 0), 1);
    EXPECT_EQ(std::string(static_cast<const char*>(data), size), "content and more");
    EXPECT_EQ(client.FTPFreeFileAPI(data), 1);
  }

  void transfer() {
    EXPECT_EQ(client.FTPDownloadFile(remote("file").c_str(), local("file").c_str(), 0), 1);
    EXPECT_EQ(contentOf(local("file")), "content and more");
    EXPECT_EQ(client.FTPUploadFile(remote("up").c_str(), local("file").c_str(), 0), 1);
    EXPECT_EQ(client.FTPFileSize(remote("up").c_str(), 0, 0, 0), 16u);
  }

  void copyAndMove() {
    EXPECT_TRUE(copies(remote("file"), remote("copy")));
    EXPECT_TRUE(copies(remote("copy"), testing_support::localName(local("copy"))));
    EXPECT_EQ(contentOf(local("copy")), "content and more");
    EXPECT_TRUE(copies(testing_support::localName(local("copy")), remote("back")));
    EXPECT_EQ(client.FTPMovFile(remote("copy").c_str(), remote("moved").c_str(), nullptr, 0, 0, 0), 1);
    EXPECT_EQ(client.FTPRenameFile(remote("moved").c_str(), remote("renamed").c_str(), 0), 1);
    EXPECT_EQ(client.FTPFileSize(remote("renamed").c_str(), 0, 0, 0), 16u);
    EXPECT_EQ(client.FTPFileSize(remote("back").c_str(), 0, 0, 0), 16u);
  }

  void list() {
    std::uint32_t files = 0;
    std::uint32_t directories = 0;
    EXPECT_EQ(client.FTPCountFolderItems(folder.c_str(), &files, &directories, 0), 1);
    EXPECT_EQ(files, 4u) << "file, up, back, renamed";
    EXPECT_EQ(directories, 1u);
    // An entry names its directory, where it has room for that.
    const bool fits = folder.size() < kHostPathCapacity;
    std::uint32_t count = 0;
    EXPECT_EQ(client.FTPGetDirectory(folder.c_str(), nullptr, &count, "*.*", 0), fits ? 1 : 0);
    EXPECT_EQ(count, fits ? 5u : 0u);
  }

  void remove() {
    EXPECT_EQ(client.FTPDestroyFileContent(remote("up").c_str(), 1, 0, 0, 0), 1);
    for (const char* name : {"up", "file", "back", "renamed"}) {
      EXPECT_EQ(client.FTPRmvFile(remote(name).c_str(), 0, 0, 0, 0), 1) << name;
    }
    EXPECT_EQ(client.FTPFileExists(remote("up").c_str(), 0, 0, 0), 0);
    EXPECT_EQ(client.FTPRmvDir(remote("sub").c_str(), 0, 0, 0), 1);
    EXPECT_EQ(client.FTPRmvDir(folder.c_str(), 0, 0, 0), 1);
    EXPECT_EQ(client.FTPDirExist(folder.c_str(), 0, 0, 0), 0);
  }

  TQXIP& client;
  const std::string folder;
  const std::string localFolder;
};

}  // namespace

void run(TQXIP& client, const Place& place) { Tour(client, place).run(); }

}  // namespace operation_tour
