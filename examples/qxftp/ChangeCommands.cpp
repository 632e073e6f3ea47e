// SPDX-License-Identifier: MIT
#include "examples/qxftp/ChangeCommands.h"

#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

bool write(const Session& session, const Arguments& arguments, QXBool append) {
  std::ifstream file(arguments[0], std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  return file.is_open() && session.client.FTPWriteFile(arguments[1].c_str(), content.data(),
                                                       static_cast<std::uint32_t>(content.size()), append, 0,
                                                       kRetries, 0, 0) != 0;
}

// Called on the worker's thread. The answer 1 would stop the copy.
QXBool showProgress(const char* path, std::uint32_t percent, std::uint32_t) {
  static std::uint32_t shown = 0;
  if (percent / 25 != shown) std::printf("%s: %u %%\n", path, percent);
  shown = percent / 25;
  return 0;
}

}  // namespace

bool writeContent(const Session& session, const Arguments& arguments) { return write(session, arguments, 0); }

bool appendContent(const Session& session, const Arguments& arguments) {
  return write(session, arguments, 1);
}

bool readContent(const Session& session, const Arguments& arguments) {
  void* block = nullptr;
  std::uint32_t size = 0;
  if (!session.client.FTPReadFile(arguments[0].c_str(), &block, &size, 0, kRetries, 0, 0)) return false;
  std::ofstream file(arguments[1], std::ios::binary);
  file.write(static_cast<const char*>(block), size);
  session.client.FTPFreeFileAPI(block);
  return file.flush().good();
}

bool copyFile(const Session& session, const Arguments& arguments) {
  return session.client.FTPCpyFile(arguments[0].c_str(), arguments[1].c_str(), &showProgress, kRetries, 0,
                                   0) != 0;
}

bool moveFile(const Session& session, const Arguments& arguments) {
  return session.client.FTPMovFile(arguments[0].c_str(), arguments[1].c_str(), &showProgress, kRetries, 0,
                                   0) != 0;
}

bool renameFile(const Session& session, const Arguments& arguments) {
  return session.client.FTPRenameFile(arguments[0].c_str(), arguments[1].c_str(), kRetries) != 0;
}

bool removeFile(const Session& session, const Arguments& arguments) {
  return session.client.FTPRmvFile(arguments[0].c_str(), 0, kRetries, 0, 0) != 0;
}

bool removeDirectory(const Session& session, const Arguments& arguments) {
  return session.client.FTPRmvDir(arguments[0].c_str(), kRetries, 0, 0) != 0;
}

bool createDirectory(const Session& session, const Arguments& arguments) {
  return session.client.FTPCreateDir(arguments[0].c_str(), kRetries, 0, 0) != 0;
}

// Like a file manager's "New folder": a name that is taken gets a number.
bool createNewDirectory(const Session& session, const Arguments& arguments) {
  char created[256] = "";
  if (!session.client.FTPCreateNewDir(arguments[0].c_str(), created, arguments[1].c_str(), kRetries))
    return false;
  std::printf("%s\n", created);
  return true;
}

// From the host and port of the command line, which are those of a web server then.
bool downloadByHttp(const Session& session, const Arguments& arguments) {
  const Options& options = session.options;
  return session.client.HTTPDownloadFile(options.host.c_str(), arguments[0].c_str(), options.port,
                                         arguments[1].c_str(), nullptr, 0, 0) != 0;
}
