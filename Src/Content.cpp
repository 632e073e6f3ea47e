// SPDX-License-Identifier: MIT
// FTPWriteFile, FTPReadFile, FTPFreeFileAPI: blocks of the host's memory to and from remote files, in paced
// chunks.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

#include "Src/HostCall.h"
#include "Src/LocalFile.h"
#include "Src/OperationRunner.h"
#include "Src/PrivateAttempt.h"
#include "Src/Progress.h"
#include "Src/RemoteFile.h"
#include "Src/RemotePath.h"
#include "Src/TemporaryCopy.h"
#include "framework/platform/stop_token.h"
#include "support/Messages.h"

namespace {

constexpr std::chrono::milliseconds kPace{20};  // before every chunk

// A block goes to the host as bare memory and comes back as such.
// NOLINTBEGIN(cppcoreguidelines-no-malloc)
void* allocateBlock(std::size_t size) noexcept { return std::malloc(size); }
void freeBlock(void* block) noexcept { std::free(block); }
// NOLINTEND(cppcoreguidelines-no-malloc)

struct Free {
  void operator()(void* block) const noexcept { freeBlock(block); }
};
using Block = std::unique_ptr<std::uint8_t, Free>;

struct ContentThread : QXFtpThread {
  const void* pData = nullptr;
  std::uint64_t nSize = 0;
  bool append = false;
  Block block;  // what the worker has read; the host's only when the worker's answer is the operation's
  std::uint32_t nBlockSize = 0;
};

void keepPace() {
  platform::stoppableSleep(kPace);
  PumpMessages(nullptr, 0, 0);
}

bool writeChunks(ContentThread& record, RemoteFile& file) {
  const auto* data = static_cast<const std::uint8_t*>(record.pData);
  const auto total = static_cast<std::uint32_t>(record.nSize);
  for (std::uint32_t sent = 0; sent < total;) {
    keepPace();
    const std::uint32_t chunk = std::min(kChunk, total - sent);
    if (!file.Write(data + sent, chunk)) return false;
    sent += chunk;
    // The last chunk shows its own size, not the sum: hosts know the end of a transfer by it.
    StoreProgress(record, sent < total ? sent : chunk, total);
  }
  return true;
}

bool appendLocally(ContentThread& record, const char* local) {
  LocalFile file(*record.pQXIP, record.pRetries);
  return file.Open(local, CFile::modeWrite | CFile::ownerOnly) && file.SeekBehindContent() &&
         file.Write(record.pData, static_cast<std::uint32_t>(record.nSize)) && file.Close();
}

// A download takes a file that is there for that of an empty remote file, but here it can only be one that a
// program has left behind. The attempt fails, which deletes it.
bool isFree(const char* local) {
  CFile leftOver;
  if (!leftOver.Open(local, CFile::modeRead)) return true;
  platform::setLastError(platform::kErrorFileExists);
  return false;
}

// Appends through a local copy. The remote file has been opened for writing behind its content and closed
// before; a server that empties it then leaves nothing to append to, and the append fails.
bool appendThroughCopy(ContentThread& record, RemoteFile& file) {
  TQXIP& client = *record.pQXIP;
  TemporaryCopy copy;
  static_cast<void>(file.Close());
  return copy.Take(record.pszName) && isFree(copy.Name()) &&
         HostCall([&] { return client.FTPDownloadFile(record.pszName, copy.Name(), *record.pRetries); }) !=
             0 &&
         appendLocally(record, copy.Name()) &&
         HostCall([&] { return client.FTPUploadFile(record.pszName, copy.Name(), *record.pRetries); }) != 0;
}

bool writeContent(ContentThread& record, CFtpConnection& connection) {
  PathText target;
  if (record.nSize == 0) {
    platform::setLastError(platform::kErrorInvalidParameter);
    return false;
  }
  if (!MakeFtpPath(record.pszName, target)) return false;
  ToFtpPath(target.data());
  RemoteFile file(*record.pQXIP, record.pRetries);
  if (!file.Open(connection, target.c_str(),
                 record.append ? internet::kFileAppendData : internet::kGenericWrite)) {
    return false;
  }
  if (record.append) return appendThroughCopy(record, file);
  return writeChunks(record, file) && file.Close();
}

// One byte more than the content has; of an empty one that byte is 0.
Block newBlock(std::uint32_t size) {
  Block block(static_cast<std::uint8_t*>(allocateBlock(std::size_t{size} + 1)));
  if (block == nullptr) {
    platform::setLastError(platform::kErrorNotEnoughMemory);
  } else if (size == 0) {
    *block = 0;
  }
  return block;
}

bool readChunks(ContentThread& record, RemoteFile& file, std::uint8_t* block, std::uint32_t size) {
  for (std::uint32_t done = 0; done < size;) {
    keepPace();
    const std::uint32_t chunk = std::min(kChunk, size - done);
    std::uint32_t read = 0;
    if (!file.Read(block + done, chunk, &read)) return false;
    if (read < chunk) {
      platform::setLastError(internet::kConnectionAborted);  // the file ended before its size
      return false;
    }
    done += chunk;
    StoreProgress(record, done, size);
  }
  return true;
}

bool readInto(ContentThread& record, CFtpConnection& connection, const char* target, std::uint8_t* block,
              std::uint32_t size) {
  RemoteFile file(*record.pQXIP, record.pRetries);
  if (!file.Open(connection, target, internet::kGenericRead)) return false;
  file.Expect(size);
  return readChunks(record, file, block, size) && file.Close();
}

bool readContent(ContentThread& record, CFtpConnection& connection) {
  PathText target;
  if (!MakeFtpPath(record.pszName, target)) return false;
  ToFtpPath(target.data());
  const std::uint32_t size =
      HostCall([&] { return record.pQXIP->FTPFileSize(record.pszName, *record.pRetries, 0, 0); });
  Block block = newBlock(size);
  if (block == nullptr) return false;
  if (size > 0 && !readInto(record, connection, target.c_str(), block.get(), size)) return false;
  record.block = std::move(block);
  record.nBlockSize = size;
  return true;
}

internet::FtpErrand::Kind writeKind(const ContentThread& record) {
  return record.append ? internet::FtpErrand::Kind::append : internet::FtpErrand::Kind::upload;
}

internet::FtpErrand errandOf(internet::FtpErrand::Kind kind, const char* name) {
  PathText target;
  if (!MakeFtpPath(name, target)) return {};
  if (kind != internet::FtpErrand::Kind::download) ToFtpPath(target.data());
  return {.kind = kind, .path = target.c_str()};
}

template <bool move(ContentThread&, CFtpConnection&)>
AttemptOutcome attempt(QXFtpThread& base, internet::FtpErrand::Kind kind) {
  auto& record = static_cast<ContentThread&>(base);
  return AttemptOverPrivateConnection(
      record, MayGoToServer(record.pszName),
      [&](CFtpConnection& connection) { return move(record, connection); }, errandOf(kind, record.pszName));
}

AttemptOutcome attemptToWrite(QXFtpThread& base) {
  return attempt<writeContent>(base, writeKind(static_cast<ContentThread&>(base)));
}

AttemptOutcome attemptToRead(QXFtpThread& base) {
  return attempt<readContent>(base, internet::FtpErrand::Kind::download);
}

void FTPWriteFileThr(void* argument) { RunReportedWorker(argument, sites::kWriteFileThr, &attemptToWrite); }

void FTPReadFileThr(void* argument) { RunReportedWorker(argument, sites::kReadFileThr, &attemptToRead); }

}  // namespace

QXBool TQXIP::FTPWriteFile(const char* pszPath, const void* pData, std::uint32_t nSize, QXBool bAppend,
                           std::uint32_t nReserved, std::uint32_t nRetries, QXHostValue nPollArg1,
                           QXHostValue nPollArg2) {
  return GuardOperation(*this, [&] {
    ContentThread record;
    FillRecord(record, *this, nRetries, pszPath);
    record.pData = pData;
    record.nSize = nSize;
    record.append = bAppend != 0;
    const bool checked = IsSet(m_bInitialized) && pszPath != nullptr && *pszPath != '\0' && pData != nullptr;
    const auto rerun = [&] {
      return FTPWriteFile(pszPath, pData, nSize, bAppend, nReserved, 1, nPollArg1, nPollArg2) != 0;
    };
    const auto enter = [&] {
      WriteEntryLine(*this, sites::kWriteFile, {.first = pszPath});
      return checked ? Entry::worker : Entry::refused;
    };
    const WorkerCall call = TransferCall(*this, record, &FTPWriteFileThr, nPollArg1, nPollArg2);
    return RunReportedOperation(
        {.call = call, .slot = Slot::FTPWriteFile, .site = sites::kWriteFile, .paths = {.first = pszPath}},
        enter, rerun);
  });
}

QXBool TQXIP::FTPReadFile(const char* pszPath, void** ppData, std::uint32_t* pnSize, std::uint32_t nReserved,
                          std::uint32_t nRetries, QXHostValue nPollArg1, QXHostValue nPollArg2) {
  return GuardOperation(*this, [&] {
    ContentThread record;
    FillRecord(record, *this, nRetries, pszPath);
    const bool checked = IsSet(m_bInitialized) && pszPath != nullptr && *pszPath != '\0' &&
                         ppData != nullptr && pnSize != nullptr;
    const auto enter = [&] {
      if (checked) {
        *ppData = nullptr;
        *pnSize = 0;
      }
      WriteEntryLine(*this, sites::kReadFile, {.first = pszPath});
      return checked ? Entry::worker : Entry::refused;
    };
    // It fills the host's variables itself, and what they then hold is the host's whatever the answer.
    const auto rerun = [&] {
      return FTPReadFile(pszPath, ppData, pnSize, nReserved, 1, nPollArg1, nPollArg2) != 0;
    };
    const auto take = [&] {
      *ppData = record.block.release();
      *pnSize = record.nBlockSize;
    };
    const WorkerCall call = TransferCall(*this, record, &FTPReadFileThr, nPollArg1, nPollArg2);
    return RunReportedOperation(
        {.call = call, .slot = Slot::FTPReadFile, .site = sites::kReadFile, .paths = {.first = pszPath}},
        enter, rerun, take);
  });
}

QXBool TQXIP::FTPFreeFileAPI(void* pData) {
  return GuardOperation(*this, [&]() -> QXBool {
    Block block(static_cast<std::uint8_t*>(pData));
    HostCall([&] { OnBeforeDisconnect(); });  // a pair of events that hosts may use as they like
    block.reset();
    HostCall([&] { OnAfterDisconnect(); });
    return 1;
  });
}
