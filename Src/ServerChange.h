// SPDX-License-Identifier: MIT
// What the operations that change the server's directory tree have in common: FTPRmvFile, FTPRmvDir,
// FTPCreateDir. Each change runs over a connection of its own, never over the object's.
#pragma once

#include "Src/OperationRunner.h"
#include "Src/WorkerFrame.h"
#include "framework/internet/net/FtpErrand.h"
#include "support/Paths.h"

class CFtpConnection;

// Whether a change may begin: the client is up, and there is a path that may go to a server, with login data
// that may (else the last error is 87). This has to be known before FTPDirExist is asked, which calls a bad
// path "not there".
[[nodiscard]] bool MayChange(const TQXIP& client, const char* path) noexcept;

// The few lines that make a change; `path` is the record's name as an FTP path. False with the last error
// set.
using Change = bool (*)(QXFtpThread& record, CFtpConnection& connection, const PathText& path);

// One attempt of a change's worker.
AttemptOutcome ChangeServer(QXFtpThread& record, Change change, const internet::FtpErrand& errand = {});

// Asks FTPDirExist from a change's worker. Leaves the last error alone.
[[nodiscard]] bool DirectoryIsThere(QXFtpThread& record, const PathText& path);

struct DirectoryChange {
  Slot slot;
  const FailureSite& site;
  bool wanted;  // there or gone
};

// The caller's side of a change to a directory. Where the directory already is as wanted no worker runs, and
// the answer is 1.
template <typename Rerun>
QXBool ChangeDirectoryTree(const WorkerCall& call, const DirectoryChange& change, Rerun&& rerun) {
  const LinePaths paths{.first = call.record.pszName};
  const auto enter = [&] {
    WriteEntryLine(call.client, change.site, paths);
    if (!MayChange(call.client, paths.first)) return Entry::refused;
    const bool exists =
        HostCall([&] { return call.client.FTPDirExist(paths.first, *call.record.pRetries, 0, 0); }) != 0;
    return exists == change.wanted ? Entry::answered : Entry::worker;
  };
  return RunReportedOperation({.call = call, .slot = change.slot, .site = change.site, .paths = paths}, enter,
                              rerun);
}
