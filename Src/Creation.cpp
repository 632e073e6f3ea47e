// SPDX-License-Identifier: MIT
// FTPCreateDir, which makes the directories above as well, and FTPCreateNewDir, which finds a free name.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "Src/QXIP.h"
#include "Src/RemotePath.h"
#include "Src/ServerChange.h"
#include "Src/SlotRetry.h"
#include "framework/internet/FtpConnection.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"

namespace {

// What the slashes of `name` end, from the root on. All of it is created; that most is there already does not
// matter. Hosts rely on the pairing: the slashes are those of the name as it was given, the letters those of
// the FTP path at the same places.
std::vector<std::string> namesAbove(const char* name, const PathText& path) {
  std::vector<std::string> names;
  BoundedText<kPathCapacity + 1> prefix;  // a relative path gets the root's slash in front
  bool fits = prefix.assign("/");
  const std::size_t length = path.size();
  for (std::size_t i = 0; i < length && fits; ++i) {
    if (name[i] != '/') {
      fits = prefix.append({path.c_str() + i, 1});
      continue;
    }
    names.emplace_back(prefix.c_str());
    if (prefix.size() > 1) fits = prefix.append("/");
  }
  return names;
}

void createAbove(CFtpConnection& connection, const char* name, const PathText& path) {
  const std::vector<std::string> names = namesAbove(name, path);
  connection.WillCreate(names);
  for (const std::string& each : names) connection.CreateDirectory(each.c_str());
}

bool createDirectory(QXFtpThread& record, CFtpConnection& connection, const PathText& path) {
  if (DirectoryIsThere(record, path)) return true;
  createAbove(connection, record.pszName, path);
  return DirectoryIsThere(record, path) || connection.CreateDirectory(path.c_str());
}

void FTPCreateDirThr(void* argument) {
  RunReportedWorker(argument, sites::kCreateDirThr,
                    [](QXFtpThread& record) { return ChangeServer(record, &createDirectory); });
}

constexpr std::uint32_t kNames = 1000;
constexpr std::chrono::milliseconds kPause{10};  // before a refused creation is tried again

struct NewDirectory {
  const char* parent;
  const char* baseName;
  char* created;
};

// "/pub/New", "/pub/New (1)", "/pub/New (2)", ... Below the root the first name has one slash in front and
// the others have two. False, with the last error 87, for a name that may not go to a server.
bool nameCandidate(const HostPathText& parent, const char* baseName, std::uint32_t number,
                   HostPathText& candidate) {
  char suffix[16] = "";
  if (number > 0) std::snprintf(suffix, sizeof suffix, " (%u)", number);
  const char* join = number == 0 && std::strcmp(parent.c_str(), "/") == 0 ? "" : "/";
  const bool fits = candidate.assign(parent.c_str()) && candidate.append(join) &&
                    candidate.append(baseName) && candidate.append(suffix);
  if (!fits) platform::setLastError(platform::kErrorInvalidParameter);
  return fits && MayGoToServer(candidate.c_str());
}

// One run of the free-name rule; *pCandidate is the name that it came to.
class FreeName {
 public:
  FreeName(TQXIP& client, std::uint32_t retries, HostPathText* pCandidate)
      : m_client(client), m_retries(retries), m_candidate(*pCandidate) {}

  bool Create(const NewDirectory& wanted) {
    m_candidate.clear();
    HostPathText parent;
    if (!MayChange(m_client, wanted.parent)) return false;
    if (wanted.created == nullptr || wanted.baseName == nullptr) {
      platform::setLastError(platform::kErrorInvalidParameter);
      return false;
    }
    if (!MakeFtpPath(wanted.parent, parent) || !Exists(parent)) return false;
    if (!TakeFirstFree(parent, wanted.baseName)) return false;
    std::memcpy(wanted.created, m_candidate.c_str(), m_candidate.size() + 1);
    return true;
  }

 private:
  // A refused creation is tried again with the same name for as long as the server refuses it.
  bool TakeFirstFree(const HostPathText& parent, const char* baseName) {
    for (std::uint32_t number = 0; nameCandidate(parent, baseName, number, m_candidate) && number < kNames;
         ++number) {
      while (!Exists(m_candidate)) {
        if (HostCall([&] { return m_client.FTPCreateDir(m_candidate.c_str(), m_retries, 0, 0); }) != 0) {
          return true;
        }
        platform::stoppableSleep(kPause);
      }
    }
    return false;
  }

  bool Exists(const HostPathText& path) {
    return HostCall([&] { return m_client.FTPDirExist(path.c_str(), m_retries, 0, 0); }) != 0;
  }

  TQXIP& m_client;
  const std::uint32_t m_retries;
  HostPathText& m_candidate;
};

}  // namespace

QXBool TQXIP::FTPCreateDir(const char* pszPath, std::uint32_t nRetries, QXHostValue nPollArg1,
                           QXHostValue nPollArg2) {
  return GuardOperation(*this, [&] {
    QXFtpThread record;
    FillRecord(record, *this, nRetries, pszPath);
    return ChangeDirectoryTree({.client = *this, .record = record, .worker = &FTPCreateDirThr},
                               {Slot::FTPCreateDir, sites::kCreateDir, true},
                               [&] { return FTPCreateDir(pszPath, 1, nPollArg1, nPollArg2) != 0; });
  });
}

QXBool TQXIP::FTPCreateNewDir(const char* pszParent, char* pszCreated, const char* pszBaseName,
                              std::uint32_t nRetries) {
  return GuardOperation(*this, [&]() -> QXBool {
    const NewDirectory wanted{.parent = pszParent, .baseName = pszBaseName, .created = pszCreated};
    HostPathText candidate;  // of the innermost run; its lines come first, and those of the outermost last
    HostPathText outermost;
    bool isOutermost = true;
    const auto run = [&] {
      const bool created = FreeName(*this, nRetries, &candidate).Create(wanted);
      if (std::exchange(isOutermost, false)) outermost = candidate;
      return created;
    };
    const auto again = [&](std::uint32_t retries) {
      return FTPCreateNewDir(pszParent, pszCreated, pszBaseName, retries) != 0;
    };
    const auto end = [&](bool failed) {
      EndWithReport(*this, sites::kCreateNewDir, {.first = candidate.c_str()}, failed);
      candidate = outermost;
    };
    return RetryThroughSlot(*this, nRetries, {.slot = Slot::FTPCreateNewDir}, run, again, end) ? 1 : 0;
  });
}
