// SPDX-License-Identifier: MIT
// FTPMovFile and FTPRenameFile, on the caller's thread.
#include <optional>

#include "Src/CopyWatch.h"
#include "Src/HostCall.h"
#include "Src/OperationGuard.h"
#include "Src/PrivateConnection.h"
#include "Src/RemotePath.h"
#include "Src/SameFile.h"
#include "Src/SharedFlag.h"
#include "Src/SlotRetry.h"
#include "framework/platform/file.h"

namespace {

bool removeLocal(const char* path) {
  static_cast<void>(platform::setFileAttributes(path, platform::kFileAttributeArchive));
  return platform::deleteFile(path);
}

// A local source: what was written to it since is at no other place.
class LocalSource {
 public:
  explicit LocalSource(const char* path) noexcept : m_path(path), m_before(Stamp()) {}

  [[nodiscard]] bool HasChanged() const noexcept {
    const std::optional<platform::FileStamp> now = Stamp();
    return m_before && now && *now != *m_before;
  }

 private:
  [[nodiscard]] std::optional<platform::FileStamp> Stamp() const noexcept {
    return IsRemotePath(m_path) ? std::nullopt : platform::fileStamp(m_path);
  }

  const char* m_path;
  std::optional<platform::FileStamp> m_before;
};

bool isOntoItself(const char* source, const char* destination) {
  return IsRemotePath(source) && IsRemotePath(destination) && MayBeSameFile(source, destination);
}

bool renameOnce(TQXIP& client, const char* from, const char* to) {
  if (!MayGoToServer(from) || !MayGoToServer(to)) return false;
  PrivateConnection connection(client);
  PathText source;
  PathText target;
  internet::FtpErrand errand;
  if (MakeFtpPath(from, source) && MakeFtpPath(to, target)) {
    errand = {.kind = internet::FtpErrand::Kind::rename, .path = source.c_str()};
  }
  return connection.Open(errand) && BothGiven(from, to) &&
         connection.Connection()->Rename(source.c_str(), target.c_str());
}

}  // namespace

// A copy can say success without having copied all, or anything: the source goes only when it is known to be
// whole at another place.
QXBool TQXIP::FTPMovFile(const char* pszSource, const char* pszDestination, QXProgress pfnProgress,
                         std::uint32_t nRetries, QXHostValue nPollArg1, QXHostValue nPollArg2) {
  return GuardOperation(*this, [&] {
    const auto copied = [&] {
      return FTPCpyFile(pszSource, pszDestination, pfnProgress, nRetries, nPollArg1, nPollArg2) != 0;
    };
    const auto run = [&] {
      if (!IsSet(m_bInitialized) || !BothGiven(pszSource, pszDestination)) return false;
      const CopyWatch watch;
      const LocalSource local(pszSource);
      if (!HostCall(copied)) return false;
      if (watch.Doubted() || local.HasChanged() || isOntoItself(pszSource, pszDestination)) return true;
      return IsRemotePath(pszSource) ? FTPRmvFile(pszSource, 0, nRetries, nPollArg1, nPollArg2) != 0
                                     : removeLocal(pszSource);
    };
    const auto again = [&](std::uint32_t retries) {
      return FTPMovFile(pszSource, pszDestination, pfnProgress, retries, nPollArg1, nPollArg2) != 0;
    };
    const LinePaths paths{.first = pszSource, .second = pszDestination, .isPair = true};
    return RunPairOperation({*this, sites::kMovFile, paths, Slot::FTPMovFile}, nRetries, run, again);
  });
}

QXBool TQXIP::FTPRenameFile(const char* pszOld, const char* pszNew, std::uint32_t nRetries) {
  return GuardOperation(*this, [&] {
    const auto run = [&] { return renameOnce(*this, pszOld, pszNew); };
    const auto again = [&](std::uint32_t retries) { return FTPRenameFile(pszOld, pszNew, retries) != 0; };
    const LinePaths paths{.first = pszOld, .second = pszNew, .isPair = true};
    return RunPairOperation({*this, sites::kRenameFile, paths, Slot::FTPRenameFile}, nRetries, run, again);
  });
}
