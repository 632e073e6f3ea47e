// SPDX-License-Identifier: MIT
// FTPRmvFile and FTPRmvDir. Removal is never recursive.
#include <string>

#include "Src/QXIP.h"
#include "Src/RemotePath.h"
#include "Src/ServerChange.h"
#include "framework/internet/FtpConnection.h"

namespace {

struct RmvFileThread : QXFtpThread {
  std::uint32_t nWipePasses = 0;
};

bool removeFile(QXFtpThread& record, CFtpConnection& connection, const PathText& path) {
  PathText target = path;
  ToFtpPath(target.data());  // twice: of three leading slashes one remains
  const std::uint32_t passes = static_cast<RmvFileThread&>(record).nWipePasses;
  const auto destroyed = [&] {
    return record.pQXIP->FTPDestroyFileContent(record.pszName, passes, *record.pRetries, 0, 0);
  };
  if (passes > 0 && HostCall(destroyed) == 0) return false;
  return connection.Remove(target.c_str());
}

// Whether the server has removed a directory is asked, not taken from its reply. The server's current
// directory stays what it is, even where it is the one that goes.
bool removeDirectory(QXFtpThread& record, CFtpConnection& connection, const PathText& path) {
  std::string text;
  PathText current;
  if (!connection.GetCurrentDirectory(text) || !MakeFtpPath(text.c_str(), current)) return false;
  connection.RemoveDirectory(path.c_str());
  return !DirectoryIsThere(record, path);
}

void FTPRmvFileThr(void* argument) {
  RunReportedWorker(argument, sites::kRmvFileThr,
                    [](QXFtpThread& record) { return ChangeServer(record, &removeFile); });
}

void FTPRmvDirThr(void* argument) {
  RunReportedWorker(argument, sites::kRmvDirThr, [](QXFtpThread& record) {
    return ChangeServer(record, &removeDirectory, {.kind = internet::FtpErrand::Kind::directory});
  });
}

}  // namespace

QXBool TQXIP::FTPRmvFile(const char* pszPath, std::uint32_t nWipePasses, std::uint32_t nRetries,
                         QXHostValue nPollArg1, QXHostValue nPollArg2) {
  return GuardOperation(*this, [&] {
    RmvFileThread record;
    FillRecord(record, *this, nRetries, pszPath);
    record.nWipePasses = nWipePasses;
    const auto enter = [&] {
      WriteEntryLine(*this, sites::kRmvFile, {.first = pszPath});
      return MayChange(*this, pszPath) ? Entry::worker : Entry::refused;
    };
    const WorkerCall call{.client = *this,
                          .record = record,
                          .worker = &FTPRmvFileThr,
                          .polling = Polling::always,
                          .nPollArg1 = nPollArg1,
                          .nPollArg2 = nPollArg2};
    return RunReportedOperation(
        {.call = call, .slot = Slot::FTPRmvFile, .site = sites::kRmvFile, .paths = {.first = pszPath}}, enter,
        [&] { return FTPRmvFile(pszPath, nWipePasses, 1, nPollArg1, nPollArg2) != 0; });
  });
}

QXBool TQXIP::FTPRmvDir(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                        QXHostValue nPollArg2) {
  return GuardOperation(*this, [&] {
    QXFtpThread record;
    FillRecord(record, *this, nRetries, pszPath);
    const WorkerCall call{.client = *this,
                          .record = record,
                          .worker = &FTPRmvDirThr,
                          .polling = Polling::always,
                          .nPollArg1 = nPollArg1,
                          .nPollArg2 = nPollArg2};
    return ChangeDirectoryTree(call, {Slot::FTPRmvDir, sites::kRmvDir, false},
                               [&] { return FTPRmvDir(pszPath, 1, nPollArg1, nPollArg2) != 0; });
  });
}
