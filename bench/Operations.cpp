// SPDX-License-Identifier: MIT
#include "bench/Operations.h"

#include <chrono>
#include <filesystem>
#include <memory>

#include "bench/Cancels.h"

namespace {

bool download(TQXIPIFInt& client, const Arguments& arguments) {
  return client.FTPDownloadFile(arguments.at(0).c_str(), arguments.at(1).c_str(), 0) != 0;
}

bool copy(TQXIPIFInt& client, const Arguments& arguments) {
  return client.FTPCpyFile(arguments.at(0).c_str(), arguments.at(1).c_str(), nullptr, 0, 0, 0) != 0;
}

bool upload(TQXIPIFInt& client, const Arguments& arguments) {
  return client.FTPUploadFile(arguments.at(1).c_str(), arguments.at(0).c_str(), 0) != 0;
}

// From the web server that stands at the login's host and port.
bool http(TQXIPIFInt& client, const Arguments& arguments) {
  return client.HTTPDownloadFile(client.m_RemoteSystem, arguments.at(0).c_str(), client.m_nPort,
                                 arguments.at(1).c_str(), nullptr, 0, 0) != 0;
}

// The number of entries of the path, which the client keeps. None other than that of the arguments will do.
bool count(TQXIPIFInt& client, const Arguments& arguments) {
  std::uint32_t count = 0;
  return client.FTPGetDirectory(arguments.at(0).c_str(), nullptr, &count, "*", 0) != 0 &&
         std::to_string(count) == arguments.at(1);
}

// The whole listing as a host takes it: into an array of its own.
bool list(TQXIPIFInt& client, const Arguments& arguments) {
  if (!count(client, arguments)) return false;
  auto wanted = static_cast<std::uint32_t>(std::stoul(arguments.at(1)));
  const auto entries = std::make_unique_for_overwrite<QXDirEntry[]>(wanted + 1);
  return client.FTPGetDirectory(arguments.at(0).c_str(), entries.get(), &wanted, "*", 0) != 0;
}

bool exists(TQXIPIFInt& client, const Arguments& arguments) {
  return client.FTPFileExists(arguments.at(0).c_str(), 0, 0, 0) != 0;
}

bool size(TQXIPIFInt& client, const Arguments& arguments) {
  return std::to_string(client.FTPFileSize(arguments.at(0).c_str(), 0, 0, 0)) == arguments.at(1);
}

bool rename(TQXIPIFInt& client, const Arguments& arguments) {
  return client.FTPRenameFile(arguments.at(0).c_str(), arguments.at(1).c_str(), 0) != 0;
}

bool remove(TQXIPIFInt& client, const Arguments& arguments) {
  return client.FTPRmvFile(arguments.at(0).c_str(), 0, 0, 0, 0) != 0;
}

bool createDirectory(TQXIPIFInt& client, const Arguments& arguments) {
  return client.FTPCreateDir(arguments.at(0).c_str(), 0, 0, 0) != 0;
}

bool removeDirectory(TQXIPIFInt& client, const Arguments& arguments) {
  return client.FTPRmvDir(arguments.at(0).c_str(), 0, 0, 0) != 0;
}

template <bool (*kCarryOut)(TQXIPIFInt&, const Arguments&)>
double timed(TQXIPIFInt& client, const Arguments& arguments) {
  const auto start = std::chrono::steady_clock::now();
  if (!kCarryOut(client, arguments)) throw NotDone();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// An existing local file would not be overwritten.
double intoNewFile(TQXIPIFInt& client, const Arguments& arguments) {
  std::filesystem::remove(arguments.at(1));
  return timed<download>(client, arguments);
}

}  // namespace

const std::map<std::string, Operation>& operations() {
  static const std::map<std::string, Operation> all = {{"download", intoNewFile},
                                                       {"copy", timed<copy>},
                                                       {"http", timed<http>},
                                                       {"upload", timed<upload>},
                                                       {"count", timed<count>},
                                                       {"list", timed<list>},
                                                       {"exists", timed<exists>},
                                                       {"size", timed<size>},
                                                       {"rename", timed<rename>},
                                                       {"remove", timed<remove>},
                                                       {"mkdir", timed<createDirectory>},
                                                       {"rmdir", timed<removeDirectory>},
                                                       {"cancel-copy", cancelCopy},
                                                       {"cancel-http", cancelHttp}};
  return all;
}
