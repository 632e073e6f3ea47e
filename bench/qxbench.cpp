// SPDX-License-Identifier: MIT
// qxbench: carries out one operation of the loaded library a number of times and prints the seconds of each.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "examples/host/ClientLibrary.h"

namespace {

using Arguments = std::vector<std::string>;
using Operation = std::function<bool(TQXIPIFInt& client, const Arguments& arguments)>;

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

// The whole listing as a host takes it: into an array of its own. The second argument is the number of
// entries.
bool list(TQXIPIFInt& client, const Arguments& arguments) {
  std::uint32_t count = 0;
  if (!client.FTPGetDirectory(arguments.at(0).c_str(), nullptr, &count, "*", 0)) return false;
  const auto entries = std::make_unique_for_overwrite<QXDirEntry[]>(count + 1);
  if (!client.FTPGetDirectory(arguments.at(0).c_str(), entries.get(), &count, "*", 0)) return false;
  return std::to_string(count) == arguments.at(1);
}

bool exists(TQXIPIFInt& client, const Arguments& arguments) {
  return client.FTPFileExists(arguments.at(0).c_str(), 0, 0, 0) != 0;
}

bool size(TQXIPIFInt& client, const Arguments& arguments) {
  return std::to_string(client.FTPFileSize(arguments.at(0).c_str(), 0, 0, 0)) == arguments.at(1);
}

const std::map<std::string, Operation> kOperations = {
    {"download", download}, {"copy", copy},     {"http", http}, {"upload", upload},
    {"list", list},         {"exists", exists}, {"size", size}};

void runOnce(TQXIPIFInt& client, const QXErrorInfo& error, const Operation& operation,
             const Arguments& arguments) {
  const auto start = std::chrono::steady_clock::now();
  const bool done = operation(client, arguments);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  if (!done) throw std::runtime_error(std::string(client.m_szMessage) + " | " + error.szText);
  std::printf("%.6f\n", seconds.count());
}

struct Login {
  std::string host, user, password;
  std::uint32_t port;
};

void run(const std::string& path, const Login& login, const std::string& name, int times,
         const Arguments& arguments) {
  const ClientLibrary library(path);
  QXErrorInfo error{};
  const Client client = makeClient(library, &error);
  client->FTPSetLogin(login.host.c_str(), login.user.c_str(), login.password.c_str(), login.port, 1);
  const Operation& operation = kOperations.at(name);
  for (int i = 0; i < times; ++i) {
    if (name == "download") std::filesystem::remove(arguments.at(1));  // an existing file is not overwritten
    runOnce(*client, error, operation, arguments);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 8 || !kOperations.contains(argv[6])) {
    std::fputs("usage: qxbench LIBRARY HOST PORT USER PASSWORD OPERATION TIMES [ARGUMENT...]\n", stderr);
    return 2;
  }
  try {
    const Login login{argv[2], argv[4], argv[5], static_cast<std::uint32_t>(std::stoul(argv[3]))};
    run(argv[1], login, argv[6], std::stoi(argv[7]), {argv + 8, argv + argc});
    return 0;
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "qxbench: %s\n", problem.what());
    return 1;
  }
}
