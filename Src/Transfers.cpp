// SPDX-License-Identifier: MIT
// FTPDownloadFile and FTPUploadFile: whole files over a connection of their own, on the caller's thread. They
// work even on a client that is not initialised.
#include "Src/CopyWatch.h"
#include "Src/HostCall.h"
#include "Src/MessageLines.h"
#include "Src/OperationGuard.h"
#include "Src/PrivateConnection.h"
#include "Src/QXIP.h"
#include "Src/RemotePath.h"
#include "Src/SlotRetry.h"
#include "framework/File.h"
#include "framework/platform/last_error.h"
#include "support/Diagnostics.h"

namespace {

// A remote file whose size query answers 0 cannot be told from a missing one: an existing local file then
// counts as the download, its content stays as it was. Why the transfer itself failed is not forgotten
// meanwhile.
bool acceptEmptyRemote(TQXIP& client, const char* target, const char* local) {
  const platform::LastErrorKeeper reason;
  if (HostCall([&] { return client.FTPFileSize(target, 1, 0, 0); }) != 0) return false;
  CFile file;
  const bool opened = file.Open(local, CFile::modeWrite);
  ClearErrorInfo(client.m_pErrorInfo);
  return opened;
}

// A refused upload of a local file that exists and has content counts as done; hosts rely on it. An empty
// file is tried once more as a write of no bytes.
bool acceptRefusedUpload(TQXIP& client, const char* target, const char* local) {
  const platform::LastErrorKeeper reason;
  CFile file;
  if (!file.Open(local, CFile::modeRead)) return false;
  try {
    if (file.GetLength() != 0) return true;
  } catch (CFileException* exception) {
    exception->Delete();
    return false;
  }
  const bool written = HostCall([&] { return client.FTPWriteFile(target, "", 0, 0, 1, 3, 0, 0); }) != 0;
  ClearErrorInfo(client.m_pErrorInfo);
  return written;
}

using Transfer = bool (*)(TQXIP& client, PrivateConnection& connection, const char* target,
                          const char* local);

bool download(TQXIP& client, PrivateConnection& connection, const char* target, const char* local) {
  return connection.Connection()->GetFile(target, local) || acceptEmptyRemote(client, target, local);
}

bool upload(TQXIP& client, PrivateConnection& connection, const char* target, const char* local) {
  if (connection.Connection()->PutFile(local, target)) return true;
  CopyWatch::TellDoubt();
  return acceptRefusedUpload(client, target, local);
}

bool transferOnce(TQXIP& client, const char* remote, const char* local, Transfer transfer) {
  if (!MayGoToServer(remote)) return false;
  PrivateConnection connection(client);
  PathText target;
  if (!connection.Open() || !BothGiven(remote, local) || !MakeFtpPath(remote, target)) return false;
  ToFtpPath(target.data());  // twice: of three leading slashes one remains
  return transfer(client, connection, target.c_str(), local);
}

struct TransferKind {
  const FailureSite& site;
  Slot slot;
  Transfer transfer;
  QXBool (TQXIP::*operation)(const char*, const char*, std::uint32_t);
};

// The lines name where the file comes from first.
QXBool runTransfer(TQXIP& client, const TransferKind& kind, bool fromServer, const char* remote,
                   const char* local, std::uint32_t retries) {
  return GuardOperation(client, [&] {
    const LinePaths paths{.first = fromServer ? remote : local,
                          .second = fromServer ? local : remote,
                          .isPair = true,
                          .join = FailedJoin::tight};
    const auto run = [&] { return transferOnce(client, remote, local, kind.transfer); };
    const auto again = [&](std::uint32_t left) { return (client.*kind.operation)(remote, local, left) != 0; };
    return RunPairOperation({client, kind.site, paths, kind.slot}, retries, run, again);
  });
}

}  // namespace

QXBool TQXIP::FTPDownloadFile(const char* pszRemote, const char* pszLocal, std::uint32_t nRetries) {
  return runTransfer(*this, {sites::kDownloadFile, Slot::FTPDownloadFile, &download, &TQXIP::FTPDownloadFile},
                     true, pszRemote, pszLocal, nRetries);
}

QXBool TQXIP::FTPUploadFile(const char* pszRemote, const char* pszLocal, std::uint32_t nRetries) {
  return runTransfer(*this, {sites::kUploadFile, Slot::FTPUploadFile, &upload, &TQXIP::FTPUploadFile}, false,
                     pszRemote, pszLocal, nRetries);
}
