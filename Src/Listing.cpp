// SPDX-License-Identifier: MIT
// FTPGetDirectory, FTPHasSubDir, FTPCountFolderItems: on the caller's thread, without a worker.
#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "Src/EntryArray.h"
#include "Src/FinderLoan.h"
#include "Src/HostCall.h"
#include "Src/InternetGuard.h"
#include "Src/MessageLines.h"
#include "Src/OperationGuard.h"
#include "Src/QXIP.h"
#include "Src/RemotePath.h"
#include "Src/SlotRetry.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/clock.h"
#include "framework/platform/last_error.h"

namespace {

constexpr const char* kEverything = "*.*";
constexpr std::uint32_t kDirectoryAttribute = 0x10;
// Archive, compressed, hidden, normal, read-only, system, temporary.
constexpr std::uint32_t kEntryAttributes[] = {0x20, 0x800, 0x2, 0x80, 0x1, 0x4, 0x100};

// The local calendar times of moments, as a FILETIME's two halves; nothing for an unknown one. To convert one
// is dear; servers tell one time, which the finder gives as all three, and what has come together has one
// too.
class LocalFileTimes {
 public:
  QXFileTime of(std::int64_t unixSeconds) {
    if (std::exchange(m_seconds, unixSeconds) == unixSeconds) return m_time;
    const std::uint64_t time =
        unixSeconds == 0 ? 0 : platform::fileTimeOf(platform::localTimeOf(unixSeconds));
    return m_time = {static_cast<std::uint32_t>(time), static_cast<std::uint32_t>(time >> 32)};
  }

 private:
  std::int64_t m_seconds = 0;
  QXFileTime m_time{};  // of m_seconds
};

void fillEntry(QXDirEntry& entry, const char* directory, const std::string& name, CFtpFileFind& finder,
               LocalFileTimes& times) {
  entry = QXDirEntry{};
  entry.bIsDirectory = finder.IsDirectory() ? 1 : 0;
  std::memcpy(entry.szPath, directory, std::strlen(directory) + 1);
  std::memcpy(entry.szName, name.c_str(), name.size() + 1);
  if (entry.bIsDirectory != 0) {
    entry.dwAttributes = kDirectoryAttribute;
  } else {
    const std::uint64_t size = finder.GetLength();
    entry.nFileSizeHigh = static_cast<std::uint32_t>(size >> 32);
    entry.nFileSizeLow = static_cast<std::uint32_t>(size);
  }
  for (const std::uint32_t attribute : kEntryAttributes) {
    if (finder.MatchesMask(attribute)) entry.dwAttributes |= attribute;
  }
  entry.ftLastWriteTime = times.of(finder.GetLastWriteTime());
  entry.ftCreationTime = times.of(finder.GetCreationTime());
  entry.ftLastAccessTime = times.of(finder.GetLastAccessTime());
}

// A name that begins with a dot is left out, and so is one that the entry cannot hold whole: half a name is
// another name.
bool isListed(const std::string& name) {
  return !name.empty() && name[0] != '.' && name.size() < sizeof QXDirEntry::szName;
}

// A longer path cannot be told to a host.
bool fitsEntries(const char* directory) { return std::strlen(directory) < kHostPathCapacity; }

bool mayBeListed(const TQXIP& client, const char* path) {
  if (fitsEntries(path) || RunningOperation::Runs(client, RunningOperation::Kind::counting)) {
    return MayGoToServer(path);
  }
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}

// What the finder is asked for: the bare pattern in the server's current directory, or that of a directory.
std::string searchText(const TQXIP& client, const PathText& directory, const char* pattern) {
  if (client.m_bOption != 0) return pattern;
  const char* join = std::strcmp(directory.c_str(), "/") == 0 ? "" : "/";
  return std::string(directory.c_str()) + join + pattern;
}

internet::FtpErrand searchIn(const TQXIP& client, const char* path, const char* pattern) {
  PathText directory;
  if (!MakeFtpPath(path, directory) || !MayGoToServer(pattern)) return {};
  return {.kind = internet::FtpErrand::Kind::find, .path = searchText(client, directory, pattern)};
}

void keepPending(TQXIP& client, std::unique_ptr<QXDirEntry[]> array) {
  delete[] std::exchange(client.m_pFileBuffer, array.release());
}

// A finder's walk over its entries. It asks the server nothing but, for a file found by itself, the time.
std::unique_ptr<QXDirEntry[]> takeEntries(CFtpFileFind& finder, const char* directory, std::uint32_t& count) {
  std::unique_ptr<QXDirEntry[]> array = NewEntryArray(finder.EntriesLeft());
  LocalFileTimes times;
  for (bool more = finder.EntriesLeft() > 0; more;) {
    more = finder.FindNextFile();
    const std::string name = finder.GetFileName();
    if (isListed(name)) fillEntry(array[count++], directory, name, finder, times);
  }
  return array;
}

// The entries are the host's to look at, no longer the finder's: a hook may connect anew, or free the client.
void notifyOfFiles(TQXIP& client, QXDirEntry* entries, std::uint32_t count) {
  for (QXDirEntry* entry = entries; entry != entries + count; ++entry) {
    if (entry->bIsDirectory != 0) continue;
    HostCall([&] { client.OnNotify(reinterpret_cast<QXHostValue>(entry)); });
  }
}

bool list(TQXIP& client, CFtpFileFind& finder, const char* path, const char* pattern, std::uint32_t& count) {
  PathText directory;
  if (!MakeFtpPath(path, directory) || !MayGoToServer(pattern)) return false;
  const RunningOperation running(client, RunningOperation::Kind::listing);
  finder.FindFile(searchText(client, directory, pattern).c_str(), internet::kFlagReload);
  std::uint32_t taken = 0;
  const bool fits = fitsEntries(directory.c_str());
  std::unique_ptr<QXDirEntry[]> array = takeEntries(finder, fits ? directory.c_str() : "", taken);
  finder.Close();
  if (fits) notifyOfFiles(client, array.get(), taken);
  StoreEntryCount(array.get(), taken);
  keepPending(client, std::move(array));
  count = taken;
  return true;
}

struct ListingCall {
  const char* path;
  const char* pattern;
  std::uint32_t* pnCount;
};

// Tells of a failed run, which then has this last error.
SlotRun failListing(TQXIP& client, std::uint32_t error, std::uint32_t& retries, bool connectionLost = false) {
  HostCall([&] { client.OnIPError(error, "FTP-Error!", &retries); });
  platform::setLastError(error);
  return {.ok = false, .connectionLost = connectionLost};
}

SlotRun listOnce(TQXIP& client, const ListingCall& call, std::uint32_t& retries) {
  WriteEntryLine(client, sites::kGetDirectory, {.first = call.path});
  if (call.pnCount != nullptr) *call.pnCount = 0;
  keepPending(client, NewEntryArray(0));
  std::uint32_t count = 0;
  bool ok = call.path != nullptr && *call.path != '\0' && call.pattern != nullptr && call.pnCount != nullptr;
  if (!ok) platform::setLastError(platform::kErrorInvalidParameter);
  FinderLoan loan(client);
  CFtpFileFind* finder = ok && mayBeListed(client, call.path)
                             ? loan.Take("m_pFTPGetDir", searchIn(client, call.path, call.pattern), nullptr)
                             : nullptr;
  Raised raised;
  ok = finder != nullptr && GuardInternet(client, &retries, &raised, [&] {
         return list(client, *finder, call.path, call.pattern, count);
       });
  if (call.pnCount != nullptr) *call.pnCount = count;
  if (!ok) return failListing(client, platform::lastError(), retries, raised.connectionLost);
  return {.ok = true};
}

// A hook that a listing calls has asked for another one, which would take its finder and its entries away.
SlotRun refuseWithin(TQXIP& client, const ListingCall& call, std::uint32_t& retries) {
  WriteEntryLine(client, sites::kGetDirectory, {.first = call.path});
  if (call.pnCount != nullptr) *call.pnCount = 0;
  return failListing(client, internet::kTransferInProgress, retries);
}

bool copyOut(TQXIP& client, QXDirEntry* pEntries, const std::uint32_t* pnCount) {
  const std::unique_ptr<QXDirEntry[]> array(std::exchange(client.m_pFileBuffer, nullptr));
  if (array != nullptr && pnCount != nullptr && CopyEntries(array.get(), pEntries, *pnCount)) return true;
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}

void endListing(TQXIP& client, const char* path, bool failed) {
  EndWithReport(client, sites::kGetDirectory, {.first = path}, failed);
  WriteEntryLine(client, sites::kGetDirectory, {.first = failed ? "Failed" : "OK!"});
}

// Both calls of the listing protocol, through the client's slot. False when one of them failed.
bool fetchEntries(TQXIP& client, const char* path, std::uint32_t retries,
                  std::unique_ptr<QXDirEntry[]>& entries, std::uint32_t& count) {
  PathText directory;
  if (!MakeFtpPath(path, directory)) return false;
  const RunningOperation counting(client, RunningOperation::Kind::counting);
  const auto call = [&](QXDirEntry* target) {
    return HostCall(
        [&] { return client.FTPGetDirectory(directory.c_str(), target, &count, kEverything, retries) != 0; });
  };
  if (!call(nullptr)) return false;
  entries = std::make_unique<QXDirEntry[]>(std::size_t{count} + 1);
  return call(entries.get());
}

}  // namespace

QXBool TQXIP::FTPGetDirectory(const char* pszPath, QXDirEntry* pEntries, std::uint32_t* pnCount,
                              const char* pszPattern, std::uint32_t nRetries) {
  return GuardOperation(*this, [&]() -> QXBool {
    const auto end = [&](bool failed) { endListing(*this, pszPath, failed); };
    const auto run = [&]() -> SlotRun {
      if (RunningOperation::Runs(*this, RunningOperation::Kind::listing)) {
        return refuseWithin(*this, {pszPath, pszPattern, pnCount}, nRetries);
      }
      if (pEntries == nullptr) return listOnce(*this, {pszPath, pszPattern, pnCount}, nRetries);
      WriteEntryLine(*this, sites::kGetDirectory, {.first = pszPath});
      return {.ok = copyOut(*this, pEntries, pnCount)};
    };
    const auto again = [&](std::uint32_t retries) {
      return FTPGetDirectory(pszPath, pEntries, pnCount, pszPattern, retries) != 0;
    };
    std::uint32_t none =
        0;  // a listing that was handed out, or never made, is not there the second time either
    return RetryThroughSlot(*this, pEntries == nullptr ? nRetries : none, {.slot = Slot::FTPGetDirectory},
                            run, again, end)
               ? 1
               : 0;
  });
}

QXBool TQXIP::FTPHasSubDir(const char* pszPath, std::uint32_t nRetries) {
  return GuardOperation(*this, [&]() -> QXBool {
    QXBool has = 0;
    const auto run = [&] {
      std::unique_ptr<QXDirEntry[]> entries;
      std::uint32_t count = 0;
      const bool ok = fetchEntries(*this, pszPath, nRetries, entries, count);
      has = ok && std::any_of(entries.get(), entries.get() + count,
                              [](const QXDirEntry& entry) { return entry.bIsDirectory != 0; });
      return ok;
    };
    const auto again = [&](std::uint32_t retries) {
      has = FTPHasSubDir(pszPath, retries);
      return true;
    };
    RetryThroughSlot(
        *this, nRetries,
        {.slot = Slot::FTPHasSubDir, .pause = std::chrono::milliseconds(0), .failedRunStaysFailed = true},
        run, again,
        [&](bool failed) { EndWithReport(*this, sites::kHasSubDir, {.first = pszPath}, failed); });
    return has;
  });
}

QXBool TQXIP::FTPCountFolderItems(const char* pszPath, std::uint32_t* pnFiles, std::uint32_t* pnDirectories,
                                  std::uint32_t nRetries) {
  return GuardOperation(*this, [&]() -> QXBool {
    const auto run = [&] {
      std::unique_ptr<QXDirEntry[]> entries;
      std::uint32_t count = 0;
      const bool ok = fetchEntries(*this, pszPath, nRetries, entries, count);
      const auto files = static_cast<std::uint32_t>(
          std::count_if(entries.get(), entries.get() + (ok ? count : 0),
                        [](const QXDirEntry& entry) { return entry.bIsDirectory == 0; }));
      if (pnFiles != nullptr) *pnFiles = files;
      if (pnDirectories != nullptr) *pnDirectories = (ok ? count : 0) - files;
      return ok;
    };
    const auto again = [&](std::uint32_t retries) {
      return FTPCountFolderItems(pszPath, pnFiles, pnDirectories, retries) != 0;
    };
    return RetryThroughSlot(*this, nRetries,
                            {.slot = Slot::FTPCountFolderItems, .pause = std::chrono::milliseconds(0)}, run,
                            again,
                            [&](bool failed) {
                              EndWithReport(*this, sites::kCountFolderItems, {.first = pszPath}, failed);
                            })
               ? 1
               : 0;
  });
}
