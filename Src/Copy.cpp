// SPDX-License-Identifier: MIT
// FTPCpyFile: a file from one path to another, where each may be on the server or local.
#include <optional>

#include "Src/CopyWatch.h"
#include "Src/HostCall.h"
#include "Src/LocalFile.h"
#include "Src/OperationRunner.h"
#include "Src/PrivateAttempt.h"
#include "Src/Progress.h"
#include "Src/RemoteFile.h"
#include "Src/RemotePath.h"
#include "Src/TemporaryCopy.h"
#include "framework/internet/WholeFile.h"
#include "framework/platform/file.h"
#include "framework/platform/stop_token.h"

namespace {

struct CopyThread : QXFtpThread {
  const char* pszNewName = nullptr;
  QXProgress pfnProgress = nullptr;
  bool bWhole = false;  // a copy that counts as done has all of the source

  // For the attempts behind one that has broken off.
  std::optional<CFilePart> part;      // what has come of a remote source
  bool goesOn = false;                // there may be several
  std::optional<TemporaryCopy> copy;  // where it is on its way to the server
};

// How a copy went on: a stop that the host asked for is a success.
enum class Step { failed, done, stopped };

LinePaths bothPaths(const QXFtpThread& record) {
  const auto& copy = static_cast<const CopyThread&>(record);
  return {.first = copy.pszName, .second = copy.pszNewName, .isPair = true};
}

bool asksToStop(const CopyThread& record, const char* path, std::uint32_t percent) {
  return record.pfnProgress != nullptr && HostCall([&] { return record.pfnProgress(path, percent, 0); }) != 0;
}

// In 32 bits, in which the product wraps for large files: hosts expect these figures.
std::uint32_t percentOf(std::uint64_t done, std::uint32_t size) {
  return size == 0 ? 0 : static_cast<std::uint32_t>(done) * 100u / size;
}

Step copyChunks(CopyThread& record, RemoteFile& source, LocalFile& target, const char* shown,
                std::uint32_t size) {
  // Whoever is asked finds in his file what he is told of; nobody looks into a temporary copy.
  const bool shows = record.pfnProgress != nullptr && !IsRemotePath(record.pszNewName);
  CFilePart& part = *record.part;
  for (std::uint32_t count = kChunk; count == kChunk;) {
    char* const chunk = target.Room(kChunk);
    if (chunk == nullptr || !source.Read(chunk, kChunk, &count)) return Step::failed;
    target.Added(count);
    part.Add(count);
    if (shows && !target.Flush()) return Step::failed;
    const bool stop = asksToStop(record, shown, percentOf(part.Done(), size));
    StoreProgress(record, part.Done(), size);
    if (stop) return Step::stopped;
  }
  if (part.Done() >= size) return Step::done;
  platform::setLastError(internet::kConnectionAborted);  // the file ended before its size
  return Step::failed;
}

// A part is worth nothing when somebody has got at the file that it is in.
void checkPart(CFilePart& part, const char* local) {
  platform::File file;
  if (!file.open(local, platform::FileAccess::read, platform::FileCreation::openExisting) ||
      file.size() != static_cast<std::int64_t>(part.Done())) {
    part.Forget();
  }
}

bool openTarget(LocalFile& target, const char* local, std::uint32_t flags, const CFilePart& part) {
  if (part.Done() == 0) return target.Open(local, CFile::modeCreate | CFile::modeWrite | flags);
  return target.Open(local, CFile::modeWrite | flags) && target.SeekBehindContent();
}

// Remote file to the local file that `localName` names (null: it cannot). It is asked behind the opening of
// the source: without one nothing local is claimed or emptied.
template <typename LocalName>
Step fetch(CopyThread& record, CFtpConnection& connection, const char* remote, LocalName&& localName,
           std::uint32_t size, std::uint32_t flags = 0) {
  RemoteFile source(*record.pQXIP, record.pRetries);
  LocalFile target(*record.pQXIP, record.pRetries);
  if (!source.Open(connection, remote, *record.part)) return Step::failed;
  if (size > 0) source.Expect(size);
  const char* const local = localName();
  if (local == nullptr || !openTarget(target, local, flags, *record.part)) return Step::failed;
  const Step step = copyChunks(record, source, target, remote, size);
  if (step == Step::failed) return step;
  // The server's last word on a copy that was broken off does not matter.
  if (!source.Close() && step == Step::done) return Step::failed;
  return target.Close() ? step : Step::failed;
}

std::uint32_t sizeOf(const CopyThread& record, std::uint32_t retries) {
  return HostCall([&] { return record.pQXIP->FTPFileSize(record.pszName, retries, 0, 0); });
}

bool store(CopyThread& record, const char* local) {
  PathText target;
  const CopyWatch watch;
  const bool ok =
      MakeFtpPath(record.pszNewName, target) &&
      HostCall([&] { return record.pQXIP->FTPUploadFile(target.c_str(), local, *record.pRetries); }) != 0;
  record.bWhole = ok && !watch.Doubted();
  return ok;
}

bool remoteToRemote(CopyThread& record, CFtpConnection& connection) {
  const std::uint32_t size = sizeOf(record, 1);
  PathText source;
  if (!MakeFtpPath(record.pszName, source)) return false;
  if (record.copy) checkPart(*record.part, record.copy->Name());
  const auto temporaryName = [&] {
    if (record.part->Done() > 0) return record.copy->Name();
    TemporaryCopy& copy = record.copy.emplace();
    return copy.Take(record.pszNewName) && copy.DropLeftOver() ? copy.Name() : nullptr;
  };
  const Step step = fetch(record, connection, source.c_str(), temporaryName, size, CFile::ownerOnly);
  if (step != Step::failed) record.part->Forget();
  return step == Step::stopped || (step == Step::done && store(record, record.copy->Name()));
}

bool remoteToLocal(CopyThread& record, CFtpConnection& connection) {
  const std::uint32_t size = sizeOf(record, *record.pRetries);
  PathText source;
  if (record.part->Done() > 0) checkPart(*record.part, record.pszNewName);
  const auto localName = [&] { return record.pszNewName; };
  // The end of the source, which a failed copy leaves to its destructor, sends notifications.
  const Step step = HostCall([&] {
    return MakeFtpPath(record.pszName, source) ? fetch(record, connection, source.c_str(), localName, size)
                                               : Step::failed;
  });
  record.bWhole = step == Step::done;
  const platform::LastErrorKeeper reason;
  HostCall([&] { record.pQXIP->OnAfterDisconnect(); });
  return step != Step::failed;
}

bool localToRemote(CopyThread& record) {
  return asksToStop(record, record.pszName, 0) || store(record, record.pszName);
}

bool copyFile(CopyThread& record, CFtpConnection& connection) {
  if (!BothGiven(record.pszName, record.pszNewName)) return false;
  const bool toServer = IsRemotePath(record.pszNewName);
  if (IsRemotePath(record.pszName)) {
    return toServer ? remoteToRemote(record, connection) : remoteToLocal(record, connection);
  }
  return !toServer || localToRemote(record);  // between two local paths there is nothing for us to do
}

// Local paths have their own limits and may hold what the operating system lets them.
bool mayBeUsed(const char* path) {
  PathText copy;
  if (path == nullptr || (IsRemotePath(path) ? MayGoToServer(path) : copy.assign(path))) return true;
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}

// A part has questions of its own.
internet::FtpErrand errandOf(const CopyThread& record) {
  PathText source;
  const bool asks = record.pszName != nullptr && IsRemotePath(record.pszName) && record.part->Done() == 0;
  if (!asks || !MakeFtpPath(record.pszName, source)) return {};
  return {.kind = internet::FtpErrand::Kind::download, .path = source.c_str(), .goesOn = record.goesOn};
}

AttemptOutcome attempt(QXFtpThread& base) {
  auto& record = static_cast<CopyThread&>(base);
  record.bWhole = false;
  if (!record.part) record.part.emplace(record.goesOn = *record.pRetries > 0);
  const auto copy = [&](CFtpConnection& connection) {
    const bool ok = copyFile(record, connection);
    if (!ok) record.part->BrokenOff(platform::lastError());
    return ok;
  };
  const AttemptOutcome outcome = AttemptOverPrivateConnection(
      record, mayBeUsed(record.pszName) && mayBeUsed(record.pszNewName), copy, errandOf(record));
  if (outcome.ok || *record.pRetries == 0 || record.part->Done() == 0) record.copy.reset();
  return outcome;
}

void FTPCpyFileThr(void* argument) { RunReportedWorker(argument, sites::kCpyFileThr, &attempt, &bothPaths); }

}  // namespace

QXBool TQXIP::FTPCpyFile(const char* pszSource, const char* pszDestination, QXProgress pfnProgress,
                         std::uint32_t nRetries, QXHostValue nPollArg1, QXHostValue nPollArg2) {
  return GuardOperation(*this, [&] {
    CopyThread record;
    FillRecord(record, *this, nRetries, pszSource);
    record.pszNewName = pszDestination;
    record.pfnProgress = pfnProgress;
    const LinePaths paths = bothPaths(record);
    const bool checked = IsSet(m_bInitialized) && pszSource != nullptr && pszDestination != nullptr;
    const auto enter = [&] {
      record.part.reset();
      record.copy.reset();
      WriteEntryLine(*this, sites::kCpyFile, paths);
      return checked ? Entry::worker : Entry::refused;
    };
    const auto rerun = [&] {
      return FTPCpyFile(pszSource, pszDestination, pfnProgress, 1, nPollArg1, nPollArg2) != 0;
    };
    const WorkerCall call = TransferCall(*this, record, &FTPCpyFileThr, nPollArg1, nPollArg2);
    const QXBool ok = RunReportedOperation(
        {.call = call, .slot = Slot::FTPCpyFile, .site = sites::kCpyFile, .paths = paths}, enter, rerun);
    if (ok != 0 && !record.bWhole) CopyWatch::TellDoubt();
    return ok;
  });
}
