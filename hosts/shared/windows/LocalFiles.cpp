// SPDX-License-Identifier: MIT
#include "hosts/shared/LocalFiles.h"

#include <memory>

#include "hosts/shared/Moments.h"
#include "hosts/shared/windows/System.h"

namespace hosts {
namespace {

using namespace std::chrono;

constexpr sys_days kEpochOfFileTimes = year{1601} / 1 / 1;
constexpr std::uint64_t kUnitsOfFileTimes = 10'000'000;  // in a second

struct CloseHandleOf {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, CloseHandleOf>;

std::error_code lastError() { return {static_cast<int>(GetLastError()), std::system_category()}; }

Handle open(const std::filesystem::path& path, DWORD access, DWORD flags) {
  const DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  HANDLE const handle = CreateFileW(path.c_str(), access, sharing, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr);
  return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

std::uint64_t joinedHalves(DWORD high, DWORD low) { return (std::uint64_t{high} << 32) | low; }

sys_seconds momentOf(const FILETIME& utc) {
  const std::uint64_t units = joinedHalves(utc.dwHighDateTime, utc.dwLowDateTime);
  return kEpochOfFileTimes + seconds(units / kUnitsOfFileTimes);
}

// A tag that stands for another place; other reparse points are files and folders like any.
bool isLink(HANDLE handle, DWORD attributes) {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return false;
  FILE_ATTRIBUTE_TAG_INFO tag{};
  return GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &tag, sizeof tag) != 0 &&
         IsReparseTagNameSurrogate(tag.ReparseTag);
}

}  // namespace

LocalFacts factsOf(const std::filesystem::path& path, Links links, std::error_code& error) {
  error.clear();
  const Handle file =
      open(path, FILE_READ_ATTRIBUTES, links == Links::told ? FILE_FLAG_OPEN_REPARSE_POINT : 0);
  BY_HANDLE_FILE_INFORMATION facts{};
  if (!file || !GetFileInformationByHandle(file.get(), &facts)) {
    error = lastError();
    return {};
  }
  const bool isFolder = (facts.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  const Kind kind = isFolder ? Kind::folder : Kind::file;
  return {isLink(file.get(), facts.dwFileAttributes) ? Kind::link : kind,
          joinedHalves(facts.nFileSizeHigh, facts.nFileSizeLow), momentOf(facts.ftLastWriteTime)};
}

void setChanged(const std::filesystem::path& path, sys_seconds when, std::error_code& error) {
  error.clear();
  const Handle file = open(path, FILE_WRITE_ATTRIBUTES, 0);
  const auto units = static_cast<std::uint64_t>((when - kEpochOfFileTimes) / seconds(1)) * kUnitsOfFileTimes;
  const FILETIME time{static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
  if (!file || !SetFileTime(file.get(), nullptr, nullptr, &time)) error = lastError();
}

std::optional<std::filesystem::perms> rightsOf(const std::filesystem::path& /*file*/) { return {}; }

sys_seconds momentOf(const QXFileTime& localTime) {
  const FILETIME calendar{localTime.nLow, localTime.nHigh};
  SYSTEMTIME local{};
  SYSTEMTIME utc{};
  FILETIME moment{};
  if (!FileTimeToSystemTime(&calendar, &local) || !TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc) ||
      !SystemTimeToFileTime(&utc, &moment)) {
    return momentOf(calendar);
  }
  return momentOf(moment);
}

}  // namespace hosts
