// SPDX-License-Identifier: MIT
#include "Src/ServerChange.h"

#include "Src/PrivateAttempt.h"
#include "Src/RemotePath.h"
#include "Src/SharedFlag.h"
#include "framework/platform/stop_token.h"

bool MayChange(const TQXIP& client, const char* path) noexcept {
  if (!IsSet(client.m_bInitialized)) return false;
  if (path != nullptr && *path != '\0') return MayGoToServer(path) && MayLogIn(client);
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}

AttemptOutcome ChangeServer(QXFtpThread& record, Change change, const internet::FtpErrand& errand) {
  const auto work = [&](CFtpConnection& connection) {
    PathText path;
    return MakeFtpPath(record.pszName, path) && change(record, connection, path);
  };
  return AttemptOverPrivateConnection(record, true, work, errand);
}

bool DirectoryIsThere(QXFtpThread& record, const PathText& path) {
  const platform::LastErrorKeeper reason;
  return HostCall([&] { return record.pQXIP->FTPDirExist(path.c_str(), *record.pRetries, 0, 0); }) != 0;
}
