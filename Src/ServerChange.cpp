// SPDX-License-Identifier: MIT
#include "Src/ServerChange.h"

#include "Src/PrivateConnection.h"
#include "Src/RemotePath.h"
#include "Src/SharedFlag.h"
#include "framework/platform/last_error.h"

bool MayChange(const TQXIP& client, const char* path) noexcept {
  if (!IsSet(client.m_bInitialized)) return false;
  if (path != nullptr && *path != '\0') return MayGoToServer(path);
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}

AttemptOutcome ChangeServer(QXFtpThread& record, Change change) {
  PrivateConnection connection(*record.pQXIP);
  PathText path;
  const bool ok = connection.Open() && MakeFtpPath(record.pszName, path) &&
                  change(record, *connection.Connection(), path);
  return {.ok = ok, .error = platform::lastError()};
}

void RunChangeWorker(void* argument, const FailureSite& site, Attempt attempt) {
  RunWorker(argument, {.entryLine = &site, .failedLine = &site, .pause = std::chrono::milliseconds(10)},
            attempt);
}

bool DirectoryIsThere(QXFtpThread& record, const PathText& path) {
  const platform::LastErrorKeeper reason;
  const bool exists = record.pQXIP->FTPDirExist(path.c_str(), *record.pRetries, 0, 0) != 0;
  platform::throwIfStopped();
  return exists;
}
