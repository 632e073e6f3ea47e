// SPDX-License-Identifier: MIT
#include "tests/lifetime/Operations.h"

#include <cstdlib>
#include <utility>

#include "tests/lifetime/EndingClient.h"

namespace lifetime {

namespace {

constexpr std::uint32_t kRetries = 1;
Host* g_copier = nullptr;  // the callback of a copy has no argument for its host

QXBool progress(const char*, std::uint32_t, std::uint32_t) {
  g_copier->called("progress");
  return 0;
}

void copy(TQXIP& client, const Place& place, const char* source, const std::string& target) {
  g_copier = &place.host;
  client.FTPCpyFile(source, target.c_str(), &progress, kRetries, 0, 0);
}

void keepAlive(TQXIP& client, const Place& /*place*/) { client.FTPKeepAlive(); }

void readFile(TQXIP& client, const Place& /*place*/) {
  void* data = nullptr;
  std::uint32_t size = 0;
  if (client.FTPReadFile("/d/file", &data, &size, 0, kRetries, 0, 0) != 0) client.FTPFreeFileAPI(data);
}

void freeBlock(TQXIP& client, const Place& /*place*/) {
  // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): as FTPReadFile's are
  client.FTPFreeFileAPI(std::malloc(8));
}

void list(TQXIP& client, const Place& /*place*/) {
  std::uint32_t count = 0;
  client.FTPGetDirectory("/d", nullptr, &count, "*.*", kRetries);
}

void reportError(TQXIP& client, const Place& /*place*/) {
  std::uint32_t retries = 0;
  client.OnIPError(12030, "text", &retries);
}

void createNew(TQXIP& client, const Place& /*place*/) {
  char created[260] = "";
  client.FTPCreateNewDir("/d", created, "sub", kRetries);
}

using C = TQXIP;
using P = const Place;

std::vector<Operation> onTheCallersThread() {
  return {
      {"FTPConnect",
       [](C& client, P& place) {
         client.FTPConnect(place.address.c_str(), "user", "secret", place.ftpPort, 1, 0, nullptr);
       },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPConnectInVain",
       [](C& client, P& place) {
         client.FTPConnect(place.address.c_str(), "nobody", "secret", place.ftpPort, 1, 0, nullptr);
       },
       {"OnConnect", "OnDisconnect", "OnIPError"}},
      {"FTPDisconnect",
       [](C& client, P&) { client.FTPDisconnect(); },
       {"OnBeforeDisconnect", "OnDisconnect", "OnAfterDisconnect"}},
      {"FTPGetDirectory", &list, {"OnNotify", "OnSuccess", "OnConnect", "OnDisconnect", "OnIPError"}},
      {"FTPHasSubDir", [](C& client, P&) { client.FTPHasSubDir("/d", kRetries); }, {"OnNotify", "OnIPError"}},
      {"FTPCountFolderItems",
       [](C& client, P&) {
         std::uint32_t files = 0;
         client.FTPCountFolderItems("/d", &files, nullptr, kRetries);
       },
       {"OnNotify", "OnIPError"}},
      {"FTPDownloadFile",
       [](C& client, P& place) { client.FTPDownloadFile("/d/file", place.absent.c_str(), kRetries); },
       {"OnConnect", "OnSuccess", "OnDisconnect"}},
      {"FTPUploadFile",
       [](C& client, P& place) { client.FTPUploadFile("/d/new", place.present.c_str(), kRetries); },
       {"OnConnect", "OnSuccess", "OnDisconnect"}},
      {"FTPFreeFileAPI", &freeBlock, {"OnBeforeDisconnect", "OnAfterDisconnect"}},
      {"FTPRenameFile",
       [](C& client, P&) { client.FTPRenameFile("/d/file", "/d/renamed", kRetries); },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"HTTPDownloadFile",
       [](C& client, P& place) {
         client.HTTPDownloadFile(place.address.c_str(), "/a", place.httpPort, place.absent.c_str(), nullptr,
                                 0, 0);
       },
       {"OnPoll", "message"}},
      {"OnIPError", &reportError, {"OnAfterDisconnect", "FTPReConnect", "OnIPError"}},
      {"OnStatusCallback", [](C& client, P&) { client.OnStatusCallback(1, 20, nullptr); }, {"OnStatusText"}},
      {"Wipe", [](C& client, P&) { client.Wipe("/d/file"); }, {"WipeWith"}},
  };
}

std::vector<Operation> withAWorker() {
  return {
      {"FTPKeepAlive", &keepAlive, {"message", "OnDisconnect"}},
      {"FTPDirExist",
       [](C& client, P&) { client.FTPDirExist("/d/sub", kRetries, 0, 0); },
       {"OnSuccess", "OnIPError", "OnConnect", "OnDisconnect"}},
      {"FTPFileExists",
       [](C& client, P&) { client.FTPFileExists("/d/file", kRetries, 0, 0); },
       {"OnSuccess", "OnIPError"}},
      {"FTPFileSize",
       [](C& client, P&) { client.FTPFileSize("/d/file", kRetries, 0, 0); },
       {"OnSuccess", "OnIPError"}},
      {"FTPIsDirectory",
       [](C& client, P&) { client.FTPIsDirectory("/d/sub", kRetries, 0, 0); },
       {"OnSuccess", "OnIPError"}},
      {"FTPCpyFileToServer",
       [](C& client, P& place) { copy(client, place, "/d/file", "/d/copy"); },
       {"progress", "OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPCpyFileToLocal",
       [](C& client, P& place) { copy(client, place, "/d/file", place.absent); },
       {"progress", "OnAfterDisconnect", "OnIPError"}},
      {"FTPMovFile",
       [](C& client, P&) { client.FTPMovFile("/d/file", "/d/moved", nullptr, kRetries, 0, 0); },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPRmvFile",
       [](C& client, P&) { client.FTPRmvFile("/d/file", 1, kRetries, 0, 0); },
       {"FTPDestroyFileContent", "OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPRmvDir",
       [](C& client, P&) { client.FTPRmvDir("/d/empty", kRetries, 0, 0); },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPCreateDir",
       [](C& client, P&) { client.FTPCreateDir("/d/made/deep", kRetries, 0, 0); },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPCreateNewDir", &createNew, {"OnConnect", "OnDisconnect", "OnSuccess"}, true},
      {"FTPWriteFile",
       [](C& client, P&) { client.FTPWriteFile("/d/new", "data", 4, 0, 0, kRetries, 0, 0); },
       {"OnConnect", "OnDisconnect", "OnSuccess", "OnIPError"}},
      {"FTPWriteFileAppending",
       [](C& client, P&) { client.FTPWriteFile("/d/file", "data", 4, 1, 0, kRetries, 0, 0); },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPReadFile", &readFile, {"OnConnect", "OnDisconnect", "OnSuccess", "OnIPError"}},
  };
}

}  // namespace

std::vector<Operation> operations() {
  std::vector<Operation> all = onTheCallersThread();
  std::vector<Operation> more = withAWorker();
  for (Operation& operation : more) all.push_back(std::move(operation));
  return all;
}

}  // namespace lifetime
