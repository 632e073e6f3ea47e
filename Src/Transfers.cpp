// SPDX-License-Identifier: MIT
// FTPDownloadFile and FTPUploadFile: whole files over a connection of their own, on the caller's thread. They
// work even on a client that is not initialised.
#include "Src/CopyWatch.h"
#include "Src/HostCall.h"
#include "Src/MessageLines.h"
#include "Src/OperationGuard.h"
#include "Src/PrivateConnection.h"
#include "Src/Progress.h"
#include "Src/QXIP.h"
#include "Src/RemotePath.h"
#include "Src/SlotRetry.h"
#include "framework/File.h"
#include "framework/internet/WholeFile.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"
#include "support/Diagnostics.h"

namespace {

const char* textOrEmpty(const char* text) noexcept { return text != nullptr ? text : ""; }

// A remote file whose size query answers 0 cannot be told from a missing one: an existing local file then
// counts as the download, its content stays as it was. Why the transfer itself failed is not forgotten
// meanwhile. A part that is kept for the next attempt is no such file.
bool acceptEmptyRemote(TQXIP& client, const char* target, const char* local, bool holdsPart) {
  const platform::LastErrorKeeper reason;
  if (HostCall([&] { return client.FTPFileSize(target, 1, 0, 0); }) != 0) return false;
  CFile file;
  const bool opened = !holdsPart && file.Open(local, CFile::modeWrite);
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

// One call's file, whose attempts may go on where the one before has broken off. `retries` is the call's
// counter. Local paths are null where the host gave none: nothing is moved then.
class Download {
 public:
  Download(TQXIP& client, const char* local, const std::uint32_t& retries)
      : m_client(client),
        m_local(local),
        m_goesOn(retries > 0),
        m_file(textOrEmpty(local), true, platform::kFileAttributeNormal, m_goesOn) {}

  bool Move(PrivateConnection& connection, const char* target) {
    return connection.Connection()->GetFile(target, m_file) ||
           acceptEmptyRemote(m_client, target, m_local, m_file.HoldsPart());
  }
  // A part has questions of its own.
  [[nodiscard]] internet::FtpErrand Errand(const char* target) const {
    if (m_file.HoldsPart()) return {};
    return {.kind = internet::FtpErrand::Kind::download, .path = target, .goesOn = m_goesOn};
  }
  // A host's function makes the next run, with a file of its own.
  void Leave() noexcept { m_file.Drop(); }

 private:
  TQXIP& m_client;
  const char* m_local;
  const bool m_goesOn;
  CFileDownload m_file;
};

class Upload {
 public:
  Upload(TQXIP& client, const char* local, std::uint32_t& retries)
      : m_client(client),
        m_local(local),
        m_retries(retries),
        m_goesOn(retries > 0),
        m_file(textOrEmpty(local), m_goesOn, [&client](std::uint64_t position, std::uint64_t size) {
          StoreUploadProgress(client, position, size);
        }) {}

  bool Move(PrivateConnection& connection, const char* target) {
    if (Put(connection, target)) return true;
    CopyWatch::TellDoubt();
    return acceptRefusedUpload(m_client, target, m_local);
  }
  [[nodiscard]] internet::FtpErrand Errand(const char* target) const {
    return {.kind = internet::FtpErrand::Kind::upload, .path = target, .goesOn = m_goesOn};
  }
  void Leave() noexcept {}

 private:
  // A broken connection is no refusal, which would count as done: another one goes on, for a retry each.
  bool Put(PrivateConnection& connection, const char* target) {
    bool put = connection.Connection()->PutFile(m_file, target);
    while (!put && m_retries > 0 && internet::isBrokenConnection(platform::lastError())) {
      --m_retries;
      connection.Close();
      platform::stoppableSleep(kPause);
      put = connection.Open() && connection.Connection()->PutFile(m_file, target);
    }
    return put;
  }

  static constexpr std::chrono::milliseconds kPause{10};
  TQXIP& m_client;
  const char* m_local;
  std::uint32_t& m_retries;
  const bool m_goesOn;
  CFileUpload m_file;
};

template <typename File>
bool transferOnce(TQXIP& client, const char* remote, const char* local, File& file) {
  if (!MayGoToServer(remote)) return false;
  PrivateConnection connection(client);
  PathText target;
  const bool given = MakeFtpPath(remote, target) && BothGiven(remote, local);
  ToFtpPath(target.data());  // twice: of three leading slashes one remains
  const internet::FtpErrand errand = given ? file.Errand(target.c_str()) : internet::FtpErrand{};
  if (!connection.Open(errand) || !BothGiven(remote, local)) return false;
  return file.Move(connection, target.c_str());
}

struct TransferKind {
  const FailureSite& site;
  Slot slot;
  QXBool (TQXIP::*operation)(const char*, const char*, std::uint32_t);
};

// The lines name where the file comes from first.
template <typename File>
QXBool runTransfer(TQXIP& client, const TransferKind& kind, bool fromServer, const char* remote,
                   const char* local, std::uint32_t retries) {
  return GuardOperation(client, [&] {
    const LinePaths paths{.first = fromServer ? remote : local,
                          .second = fromServer ? local : remote,
                          .isPair = true,
                          .join = FailedJoin::tight};
    File file(client, local, retries);
    const auto run = [&] { return transferOnce(client, remote, local, file); };
    const auto again = [&](std::uint32_t left) {
      file.Leave();
      return (client.*kind.operation)(remote, local, left) != 0;
    };
    return RunPairOperation({client, kind.site, paths, kind.slot}, retries, run, again);
  });
}

}  // namespace

QXBool TQXIP::FTPDownloadFile(const char* pszRemote, const char* pszLocal, std::uint32_t nRetries) {
  return runTransfer<Download>(*this, {sites::kDownloadFile, Slot::FTPDownloadFile, &TQXIP::FTPDownloadFile},
                               true, pszRemote, pszLocal, nRetries);
}

QXBool TQXIP::FTPUploadFile(const char* pszRemote, const char* pszLocal, std::uint32_t nRetries) {
  return runTransfer<Upload>(*this, {sites::kUploadFile, Slot::FTPUploadFile, &TQXIP::FTPUploadFile}, false,
                             pszRemote, pszLocal, nRetries);
}
