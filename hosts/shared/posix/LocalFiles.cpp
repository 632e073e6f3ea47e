// SPDX-License-Identifier: MIT
#include "hosts/shared/LocalFiles.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <ctime>

#include "hosts/shared/Entries.h"
#include "hosts/shared/Moments.h"

namespace hosts {
namespace {

using namespace std::chrono;

constexpr sys_days kEpochOfFileTimes = year{1601} / 1 / 1;
constexpr std::uint64_t kUnitsOfFileTimes = 10'000'000;  // in a second

Kind kindOf(mode_t mode) {
  if (S_ISREG(mode)) return Kind::file;
  if (S_ISDIR(mode)) return Kind::folder;
  return S_ISLNK(mode) ? Kind::link : Kind::other;
}

}  // namespace

LocalFacts factsOf(const std::filesystem::path& path, Links links, std::error_code& error) {
  struct stat status {};
  const int failed = links == Links::told ? lstat(path.c_str(), &status) : stat(path.c_str(), &status);
  error = failed != 0 ? std::error_code(errno, std::generic_category()) : std::error_code();
  if (failed != 0) return {};
  return {kindOf(status.st_mode), static_cast<std::uint64_t>(status.st_size),
          sys_seconds(seconds(status.st_mtime))};
}

void setChanged(const std::filesystem::path& path, sys_seconds when, std::error_code& error) {
  const timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                             {.tv_sec = when.time_since_epoch().count(), .tv_nsec = 0}};
  const int failed = utimensat(AT_FDCWD, path.c_str(), times, 0);
  error = failed != 0 ? std::error_code(errno, std::generic_category()) : std::error_code();
}

std::optional<std::filesystem::perms> rightsOf(const std::filesystem::path& file) {
  std::error_code error;
  const auto status = std::filesystem::symlink_status(file, error);
  if (!std::filesystem::is_regular_file(status)) return {};
  return status.permissions() & std::filesystem::perms::all;
}

sys_seconds momentOf(const QXFileTime& localTime) {
  const sys_seconds calendar = kEpochOfFileTimes + seconds(unitsOf(localTime) / kUnitsOfFileTimes);
  const std::time_t asIfUtc = calendar.time_since_epoch().count();
  std::tm fields{};
  gmtime_r(&asIfUtc, &fields);
  fields.tm_isdst = -1;
  return sys_seconds(seconds(std::mktime(&fields)));
}

}  // namespace hosts
