// SPDX-License-Identifier: MIT
// FTPDirExist, FTPFileExists, FTPIsDirectory, FTPFileSize. Each worker asks with the object's finder where it
// has one, else over a connection of its own. "Not there" is an answer, not a failure of the worker, except
// for the size.
#include "Src/FinderLoan.h"
#include "Src/HostCall.h"
#include "Src/InternetGuard.h"
#include "Src/OperationRunner.h"
#include "Src/QXIP.h"
#include "Src/RemotePath.h"
#include "Src/SharedFlag.h"
#include "Src/WorkerFrame.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"

namespace {

// How a worker asks, and what its own connection is made for.
struct Query {
  bool (*ask)(QXFtpThread& record, CFtpFileFind& finder);
  internet::FtpErrand (*errand)(const char* name);
};

struct FileSizeThread : QXFtpThread {
  std::uint32_t nFileSize = 0;
};

AttemptOutcome askServer(QXFtpThread& record, const char* finderField, const Query& query) {
  TQXIP& client = *record.pQXIP;
  Raised raised;
  AttemptOutcome outcome;
  FinderLoan loan(client);
  CFtpFileFind* finder =
      MayGoToServer(record.pszName) ? loan.Take(finderField, query.errand(record.pszName), &raised) : nullptr;
  if (finder != nullptr) {
    outcome.ok = GuardInternet(client, record.pRetries, &raised, [&] { return query.ask(record, *finder); });
    finder->Close();
  }
  if (!outcome.ok) {
    outcome.error = platform::lastError();
    outcome.connectionLost = raised.connectionLost;
    if (!raised.any) HostCall([&] { client.OnIPError(outcome.error, "FTP-Error!", record.pRetries); });
  }
  return outcome;
}

// The name of the finder's entry as the queries compare it; "" when it is longer than any path of the client.
PathText entryName(const CFtpFileFind& finder) {
  PathText name;
  if (name.assign(finder.GetFileName().c_str())) ToFtpPath(name.data());
  return name;
}

PathText lastComponent(const PathText& path) {
  PathText name;
  SplitPath(path.c_str(), nullptr, &name, nullptr);
  ToFtpPath(name.data());
  return name;
}

// Walks the entries of a directory for a directory called `name`. A server that gives the same entry twice in
// a row would go on for ever: the second sight of it ends the walk.
bool walkFindsDirectory(CFtpFileFind& finder, const PathText& name) {
  PathText last;
  for (bool more = true; more;) {
    more = finder.FindNextFile();
    const PathText current = entryName(finder);
    if (current.empty() && more) continue;
    if (EqualNames(current.c_str(), last.c_str())) return false;
    last = current;
    if (EqualNames(current.c_str(), name.c_str()) && finder.IsDirectory()) return true;
  }
  return false;
}

PathText directoryOf(const PathText& path) {
  PathText directory;
  SplitPath(path.c_str(), &directory, nullptr, nullptr);
  ToFtpPath(directory.data());
  return directory;
}

// The directory above is searched, and most likely there.
internet::FtpErrand searchAbove(const char* name) {
  PathText path;
  if (!MakeFtpPath(name, path) || EqualNames(path.c_str(), "/")) return {};
  return {.kind = internet::FtpErrand::Kind::content, .path = directoryOf(path).c_str()};
}

internet::FtpErrand searchFor(const char* name) {
  PathText path;
  if (!MakeFtpPath(name, path)) return {};
  return {.kind = internet::FtpErrand::Kind::find, .path = path.c_str()};
}

bool queryDirExist(QXFtpThread& record, CFtpFileFind& finder) {
  record.bResult = 0;
  PathText path;
  if (!MakeFtpPath(record.pszName, path)) return false;
  if (EqualNames(path.c_str(), "/")) {
    record.bResult = 1;
    return true;
  }
  const PathText directory = directoryOf(path);
  finder.ExpectContent();
  if (!finder.FindFile(directory.c_str(), internet::kFlagReload)) return true;
  record.bResult = walkFindsDirectory(finder, lastComponent(path)) ? 1 : 0;
  return true;
}

bool queryFileExists(QXFtpThread& record, CFtpFileFind& finder) {
  record.bResult = 0;
  PathText path;
  if (!MakeFtpPath(record.pszName, path)) return false;
  // What a directory holds is not the directory itself, though it be called the same.
  if (!finder.FindFile(path.c_str(), internet::kFlagReload) || finder.IsContent()) return true;
  finder.FindNextFile();
  const PathText entry = entryName(finder);
  const bool isFile = !finder.IsDirectory() && !entry.empty();  // the root's last component is empty, too
  record.bResult = isFile && EqualNames(lastComponent(entry).c_str(), lastComponent(path).c_str()) ? 1 : 0;
  return true;
}

bool queryFileSize(QXFtpThread& record, CFtpFileFind& finder) {
  auto& answer = static_cast<FileSizeThread&>(record).nFileSize;
  answer = 0;
  PathText path;
  if (!MakeFtpPath(record.pszName, path) || !finder.FindFile(path.c_str(), internet::kFlagReload))
    return false;
  finder.FindNextFile();
  answer = static_cast<std::uint32_t>(finder.GetLength());
  return true;
}

// "Not there" is stored by the query itself. A retry comes without a pause.
WorkerShape existenceShape(const FailureSite& site) {
  return {.failedLine = &site, .storesOutcome = false, .reportsAttemptError = true};
}

void FTPDirExistThr(void* argument) {
  RunWorker(argument, existenceShape(sites::kDirExistThr), [](QXFtpThread& record) {
    return askServer(record, "m_pFTPDirFind", {&queryDirExist, &searchAbove});
  });
}

void FTPFileExistsThr(void* argument) {
  RunWorker(argument, existenceShape(sites::kFileExistsThr), [](QXFtpThread& record) {
    return askServer(record, "m_pFTPFileFind", {&queryFileExists, &searchFor});
  });
}

void FTPFileSizeThr(void* argument) {
  RunWorker(argument, {.pause = std::chrono::milliseconds(10)}, [](QXFtpThread& record) {
    return askServer(record, "m_pFTPFileSize", {&queryFileSize, &searchFor});
  });
}

// The worker's answer. Without a worker nobody has asked, which no host may take for a "no": OnIPError hears
// of it as of any other question that could not be asked.
bool runQuery(const WorkerCall& call) {
  const WaitEnd end = RunAndWait(call);
  if (end == WaitEnd::failed) {
    const std::uint32_t error = platform::lastError();
    HostCall([&] { call.client.OnIPError(error, "FTP-Error!", nullptr); });
  }
  return end == WaitEnd::done && call.record.bResult != 0;
}

struct Existence {
  platform::WorkerThread::Entry worker;
  const FailureSite& site;
};

QXBool ask(TQXIP& client, const Existence& question, bool checked, const char* path, std::uint32_t retries) {
  return GuardOperation(client, [&]() -> QXBool {
    QXFtpThread record;
    FillRecord(record, client, retries, path);
    const bool ok = checked && runQuery({.client = client, .record = record, .worker = question.worker});
    EndWithReport(client, question.site, {.first = path}, !ok);
    return ok ? 1 : 0;
  });
}

}  // namespace

QXBool TQXIP::FTPDirExist(const char* pszPath, std::uint32_t nRetries, QXHostValue /*nPollArg1*/,
                          QXHostValue /*nPollArg2*/) {
  return ask(*this, {&FTPDirExistThr, sites::kDirExist}, IsSet(m_bInitialized), pszPath, nRetries);
}

QXBool TQXIP::FTPFileExists(const char* pszPath, std::uint32_t nRetries, QXHostValue /*nPollArg1*/,
                            QXHostValue /*nPollArg2*/) {
  return ask(*this, {&FTPFileExistsThr, sites::kFileExists}, IsSet(m_bInitialized) && pszPath != nullptr,
             pszPath, nRetries);
}

QXBool TQXIP::FTPIsDirectory(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                             QXHostValue nPollArg2) {
  return GuardOperation(*this, [&]() -> QXBool {
    if (!IsSet(m_bInitialized) || pszPath == nullptr || *pszPath == '\0') return 0;
    return FTPDirExist(pszPath, nRetries, nPollArg1, nPollArg2);
  });
}

std::uint32_t TQXIP::FTPFileSize(const char* pszPath, std::uint32_t nRetries, QXHostValue /*nPollArg1*/,
                                 QXHostValue /*nPollArg2*/) {
  return GuardOperation(*this, [&]() -> std::uint32_t {
    FileSizeThread record;
    FillRecord(record, *this, nRetries, pszPath);
    const bool checked = IsSet(m_bInitialized) && pszPath != nullptr && *pszPath != '\0';
    const bool ok = checked && runQuery({.client = *this, .record = record, .worker = &FTPFileSizeThr});
    return ok ? record.nFileSize : 0;
  });
}
