// SPDX-License-Identifier: MIT
#include "examples/qxftp/Commands.h"

#include <chrono>
#include <cstdio>
#include <filesystem>

#include "examples/qxftp/ChangeCommands.h"

namespace {

// Logs in on the object's own connection. The other commands do not need it: their operations use connections
// of their own, made from the login data.
bool connectOnly(const Session& session, const Arguments&) {
  const Options& login = session.options;
  if (!session.client.FTPConnect(login.host.c_str(), login.user.c_str(), login.password.c_str(), login.port,
                                 login.passive, 0, nullptr)) {
    return false;
  }
  std::printf("connected to %s:%u as %s\n", login.host.c_str(), login.port, login.user.c_str());
  return session.client.FTPDisconnect() != 0;
}

// "2024-02-29 12:34:56" from 100 ns units since 1601.
std::string timeText(const QXFileTime& time) {
  using namespace std::chrono;
  const std::uint64_t units = (std::uint64_t{time.nHigh} << 32) | time.nLow;
  const sys_seconds when = sys_days{year{1601} / 1 / 1} + seconds{units / 10'000'000};
  const auto day = floor<days>(when);
  const year_month_day date{day};
  const hh_mm_ss clock{when - day};
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text;
}

void printEntry(const QXDirEntry& entry) {
  const std::uint64_t size = (std::uint64_t{entry.nFileSizeHigh} << 32) | entry.nFileSizeLow;
  std::printf("%c %12llu  %s  %s\n", entry.bIsDirectory ? 'd' : '-', static_cast<unsigned long long>(size),
              timeText(entry.ftLastWriteTime).c_str(), entry.szName);
}

// A listing takes two calls: the first counts and keeps the entries, the second copies them out.
bool list(const Session& session, const Arguments& arguments) {
  const char* const path = arguments[0].c_str();
  std::uint32_t count = 0;
  if (!session.client.FTPGetDirectory(path, nullptr, &count, "*", kRetries)) return false;
  std::vector<QXDirEntry> entries(count + 1);  // never a null buffer: that would list once more
  if (!session.client.FTPGetDirectory(path, entries.data(), &count, "*", kRetries)) return false;
  entries.resize(count);
  for (const QXDirEntry& entry : entries) printEntry(entry);
  std::printf("%u entries\n", count);
  return true;
}

// 0 also means that the question could not be asked. Both operations report "no" as a failure, so that the
// record tells why.
bool exists(const Session& session, const Arguments& arguments) {
  const char* const path = arguments[0].c_str();
  if (session.client.FTPFileExists(path, kRetries, 0, 0)) {
    std::printf("%s is a file\n", path);
    return true;
  }
  session.forgetError();
  if (session.client.FTPDirExist(path, kRetries, 0, 0)) {
    std::printf("%s is a directory\n", path);
    return true;
  }
  return false;
}

// 0 is the size of an empty file and also the answer of every failure: only the record tells.
bool size(const Session& session, const Arguments& arguments) {
  const std::uint32_t bytes = session.client.FTPFileSize(arguments[0].c_str(), kRetries, 0, 0);
  if (bytes == 0 && session.hasError()) return false;
  std::printf("%u\n", bytes);
  return true;
}

bool get(const Session& session, const Arguments& arguments) {
  return session.client.FTPDownloadFile(arguments[0].c_str(), arguments[1].c_str(), kRetries) != 0;
}

// An upload answers 1 also when the server refused a file that exists here and is not empty, so ask the
// server what it has now. Sizes are those modulo 2^32, as FTPFileSize gives them. The remote path comes
// first, as in downloads.
bool put(const Session& session, const Arguments& arguments) {
  const char* const local = arguments[0].c_str();
  const char* const remote = arguments[1].c_str();
  if (!session.client.FTPUploadFile(remote, local, kRetries)) return false;
  const auto sent = static_cast<std::uint32_t>(std::filesystem::file_size(local));
  return session.client.FTPFileSize(remote, kRetries, 0, 0) == sent;
}

bool count(const Session& session, const Arguments& arguments) {
  std::uint32_t files = 0;
  std::uint32_t directories = 0;
  if (!session.client.FTPCountFolderItems(arguments[0].c_str(), &files, &directories, kRetries)) return false;
  std::printf("%u files, %u directories\n", files, directories);
  return true;
}

constexpr Command kCommands[] = {
    {"connect", "", 0, connectOnly},
    {"ls", "PATH", 1, list},
    {"exists", "PATH", 1, exists},
    {"size", "PATH", 1, size},
    {"get", "REMOTE LOCAL", 2, get},
    {"put", "LOCAL REMOTE", 2, put},
    {"count", "PATH", 1, count},
    {"write", "LOCAL REMOTE", 2, writeContent},
    {"append", "LOCAL REMOTE", 2, appendContent},
    {"read", "REMOTE LOCAL", 2, readContent},
    {"copy", "FROM TO", 2, copyFile},
    {"move", "FROM TO", 2, moveFile},
    {"rename", "OLD NEW", 2, renameFile},
    {"rm", "PATH", 1, removeFile},
    {"rmdir", "PATH", 1, removeDirectory},
    {"mkdir", "PATH", 1, createDirectory},
    {"mknew", "PARENT NAME", 2, createNewDirectory},
    {"http", "OBJECT LOCAL", 2, downloadByHttp},
};

}  // namespace

std::span<const Command> commands() { return kCommands; }
