// SPDX-License-Identifier: MIT
#include "tests/lifetime/Operations.h"

#include <cstdlib>
#include <utility>

#include "tests/lifetime/EndingClient.h"

namespace lifetime {

namespace {

Host* g_copier = nullptr;  // the callback of a copy has no argument for its host

QXBool progress(const char*, std::uint32_t, std::uint32_t) {
  g_copier->called("progress");
  return 0;
}

std::uint32_t copy(TQXIP& client, const Place& place, const char* source, const std::string& target) {
  g_copier = &place.host;
  return client.FTPCpyFile(source, target.c_str(), &progress, place.retries, 0, 0);
}

std::uint32_t keepAlive(TQXIP& client, const Place& /*place*/) {
  client.FTPKeepAlive();
  return 1;
}

std::uint32_t readFile(TQXIP& client, const Place& place) {
  void* data = nullptr;
  std::uint32_t size = 0;
  const QXBool read = client.FTPReadFile("/d/file", &data, &size, 0, place.retries, 0, 0);
  if (read != 0) client.FTPFreeFileAPI(data);
  return read;
}

std::uint32_t freeBlock(TQXIP& client, const Place& /*place*/) {
  // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): as FTPReadFile's are
  return client.FTPFreeFileAPI(std::malloc(8));
}

std::uint32_t list(TQXIP& client, const Place& place) {
  std::uint32_t count = 0;
  return client.FTPGetDirectory("/d", nullptr, &count, "*.*", place.retries);
}

std::uint32_t reportError(TQXIP& client, const Place& /*place*/) {
  std::uint32_t retries = 0;
  client.OnIPError(12030, "text", &retries);
  return retries;
}

std::uint32_t createNew(TQXIP& client, const Place& place) {
  char created[260] = "";
  return client.FTPCreateNewDir("/d", created, "sub", place.retries);
}

using C = TQXIP;
using P = const Place;

std::vector<Operation> onTheCallersThread() {
  return {
      {"FTPConnect",
       [](C& client, P& place) {
         return client.FTPConnect(place.address.c_str(), "user", "secret", place.ftpPort, 1, 0, nullptr);
       },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPConnectInVain",
       [](C& client, P& place) {
         return client.FTPConnect(place.address.c_str(), "nobody", "secret", place.ftpPort, 1, 0, nullptr);
       },
       {"OnConnect", "OnDisconnect", "OnIPError"}},
      {"FTPDisconnect",
       [](C& client, P&) { return client.FTPDisconnect(); },
       {"OnBeforeDisconnect", "OnDisconnect", "OnAfterDisconnect"}},
      {"FTPGetDirectory", &list, {"OnNotify", "OnSuccess", "OnConnect", "OnDisconnect", "OnIPError"}},
      {"FTPHasSubDir",
       [](C& client, P& place) { return client.FTPHasSubDir("/d", place.retries); },
       {"OnNotify", "OnIPError"}},
      {"FTPCountFolderItems",
       [](C& client, P& place) {
         std::uint32_t files = 0;
         return client.FTPCountFolderItems("/d", &files, nullptr, place.retries);
       },
       {"OnNotify", "OnIPError"}},
      {"FTPDownloadFile",
       [](C& client, P& place) {
         return client.FTPDownloadFile("/d/file", place.absent.c_str(), place.retries);
       },
       {"OnConnect", "OnSuccess", "OnDisconnect"}},
      {"FTPUploadFile",
       [](C& client, P& place) {
         return client.FTPUploadFile("/d/new", place.present.c_str(), place.retries);
       },
       {"OnConnect", "OnSuccess", "OnDisconnect"}},
      {"FTPFreeFileAPI", &freeBlock, {"OnBeforeDisconnect", "OnAfterDisconnect"}},
      {"FTPRenameFile",
       [](C& client, P& place) { return client.FTPRenameFile("/d/file", "/d/renamed", place.retries); },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"HTTPDownloadFile",
       [](C& client, P& place) {
         return client.HTTPDownloadFile(place.address.c_str(), "/a", place.httpPort, place.absent.c_str(),
                                        nullptr, 0, 0);
       },
       {"OnPoll", "message"}},
      {"OnIPError", &reportError, {"OnAfterDisconnect", "FTPReConnect", "OnIPError"}},
      {"OnStatusCallback",
       [](C& client, P&) { return client.OnStatusCallback(1, 20, nullptr), 1; },
       {"OnStatusText"}},
      {"Wipe", [](C& client, P&) { return client.Wipe("/d/file"); }, {"WipeWith"}},
  };
}

std::vector<Operation> withAWorker() {
  return {
      {"FTPKeepAlive", &keepAlive, {"message", "OnDisconnect"}},
      {"FTPDirExist",
       [](C& client, P& place) { return client.FTPDirExist("/d/sub", place.retries, 0, 0); },
       {"OnSuccess", "OnIPError", "OnConnect", "OnDisconnect"}},
      {"FTPFileExists",
       [](C& client, P& place) { return client.FTPFileExists("/d/file", place.retries, 0, 0); },
       {"OnSuccess", "OnIPError"}},
      {"FTPFileSize",
       [](C& client, P& place) { return client.FTPFileSize("/d/file", place.retries, 0, 0); },
       {"OnSuccess", "OnIPError"}},
      {"FTPIsDirectory",
       [](C& client, P& place) { return client.FTPIsDirectory("/d/sub", place.retries, 0, 0); },
       {"OnSuccess", "OnIPError"}},
      {"FTPCpyFileToServer",
       [](C& client, P& place) { return copy(client, place, "/d/file", "/d/copy"); },
       {"progress", "OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPCpyFileToLocal",
       [](C& client, P& place) { return copy(client, place, "/d/file", place.absent); },
       {"progress", "OnAfterDisconnect", "OnIPError"}},
      {"FTPMovFile",
       [](C& client, P& place) {
         return client.FTPMovFile("/d/file", "/d/moved", nullptr, place.retries, 0, 0);
       },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPRmvFile",
       [](C& client, P& place) { return client.FTPRmvFile("/d/file", 1, place.retries, 0, 0); },
       {"FTPDestroyFileContent", "OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPRmvDir",
       [](C& client, P& place) { return client.FTPRmvDir("/d/empty", place.retries, 0, 0); },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPCreateDir",
       [](C& client, P& place) { return client.FTPCreateDir("/d/made/deep", place.retries, 0, 0); },
       {"OnConnect", "OnDisconnect", "OnSuccess"}},
      {"FTPCreateNewDir", &createNew, {"OnConnect", "OnDisconnect", "OnSuccess"}, true},
      {"FTPWriteFile",
       [](C& client, P& place) {
         return client.FTPWriteFile("/d/new", "data", 4, 0, 0, place.retries, 0, 0);
       },
       {"OnConnect", "OnDisconnect", "OnSuccess", "OnIPError"}},
      {"FTPWriteFileAppending",
       [](C& client, P& place) {
         return client.FTPWriteFile("/d/file", "data", 4, 1, 0, place.retries, 0, 0);
       },
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
