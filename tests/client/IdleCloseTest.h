// SPDX-License-Identifier: MIT
// The operations that use the object's connection, each with a client of its own whose connection the server
// has closed meanwhile.
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "framework/internet/FtpFileFind.h"
#include "tests/client/TransferTest.h"

struct IdleOperation {
  const char* name;
  // Whether it has done its work below the folder `at`, where /x has four bytes, /d is empty and /full holds
  // a file and a folder. `local` is a file of other content.
  bool (*run)(TQXIP& client, const std::string& at, const std::string& local);
};

inline const IdleOperation kIdleOperations[] = {
    {"DirExist", [](TQXIP& client, const std::string& at,
                    const std::string&) { return client.FTPDirExist((at + "/d").c_str(), 0, 0, 0) != 0; }},
    {"FileExists",
     [](TQXIP& client, const std::string& at, const std::string&) {
       return client.FTPFileExists((at + "/x").c_str(), 0, 0, 0) != 0;
     }},
    {"IsDirectory",
     [](TQXIP& client, const std::string& at, const std::string&) {
       return client.FTPIsDirectory((at + "/d").c_str(), 0, 0, 0) != 0;
     }},
    {"FileSize", [](TQXIP& client, const std::string& at,
                    const std::string&) { return client.FTPFileSize((at + "/x").c_str(), 0, 0, 0) == 4; }},
    {"GetDirectory",
     [](TQXIP& client, const std::string& at, const std::string&) {
       std::uint32_t count = 0;
       return client.FTPGetDirectory((at + "/full").c_str(), nullptr, &count, "*.*", 0) != 0 && count == 2;
     }},
    {"HasSubDir", [](TQXIP& client, const std::string& at,
                     const std::string&) { return client.FTPHasSubDir((at + "/full").c_str(), 0) != 0; }},
    {"CountFolderItems",
     [](TQXIP& client, const std::string& at, const std::string&) {
       std::uint32_t files = 0;
       std::uint32_t directories = 0;
       return client.FTPCountFolderItems((at + "/full").c_str(), &files, &directories, 0) != 0 &&
              files == 1 && directories == 1;
     }},
    {"ReadFile",
     [](TQXIP& client, const std::string& at, const std::string&) {
       void* data = nullptr;
       std::uint32_t size = 0;
       const bool ok = client.FTPReadFile((at + "/x").c_str(), &data, &size, 0, 0, 0, 0) != 0 && size == 4;
       client.FTPFreeFileAPI(data);
       return ok;
     }},
    {"RmvDir", [](TQXIP& client, const std::string& at,
                  const std::string&) { return client.FTPRmvDir((at + "/gone").c_str(), 0, 0, 0) != 0; }},
    {"CreateDir",
     [](TQXIP& client, const std::string& at, const std::string&) {
       return client.FTPCreateDir((at + "/new").c_str(), 0, 0, 0) != 0;
     }},
    {"CreateNewDir",
     [](TQXIP& client, const std::string& at, const std::string&) {
       char created[256] = "";
       return client.FTPCreateNewDir(at.c_str(), created, "d", 0) != 0 && created == at + "/d (1)";
     }},
    // The file is there and cannot be replaced, and the remote one has content: a failure.
    {"DownloadOntoAFile",
     [](TQXIP& client, const std::string& at, const std::string& local) {
       return client.FTPDownloadFile((at + "/x").c_str(), local.c_str(), 0) == 0;
     }},
    {"HostsOwnFinder",
     [](TQXIP& client, const std::string& at, const std::string&) {
       const std::unique_ptr<CFtpFileFind> finder(client.GetFinder(0, "my own"));
       return finder->FindFile((at + "/full").c_str()) && finder->EntriesLeft() == 2;
     }},
};

class IdleCloseTest : public TransferTest {
 protected:
  using Client = std::unique_ptr<RecordingClient>;

  static std::string treeAt(const std::string& at) {
    return "{\"" + at + R"(/x": "four", ")" + at + R"(/d/": {}, ")" + at + R"(/gone/": {}, ")" + at +
           R"(/full/a": "a", ")" + at + R"(/full/sub/": {}})";
  }

  // A connected client for each operation.
  std::vector<Client> connectAll(const fixture::Server& server, const std::string& user,
                                 const std::string& password) {
    std::vector<Client> clients;
    for (std::size_t i = 0; i < std::size(kIdleOperations); ++i) {
      clients.push_back(std::make_unique<RecordingClient>(&record));
      EXPECT_EQ(clients.back()->FTPConnect(server.host().c_str(), user.c_str(), password.c_str(),
                                           server.port(), 1, 0, nullptr),
                1);
      clients.back()->forget();
    }
    return clients;
  }

  // All work, and no host hears of a failure.
  void expectAllWork(const std::vector<Client>& clients, const std::string& at) {
    write("content");
    for (std::size_t i = 0; i < std::size(kIdleOperations); ++i) {
      EXPECT_TRUE(kIdleOperations[i].run(*clients[i], at, local)) << kIdleOperations[i].name;
      EXPECT_EQ(clients[i]->count("OnIPError"), 0u) << kIdleOperations[i].name;
    }
    EXPECT_EQ(content(), "content");
  }
};
