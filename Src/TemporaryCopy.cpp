// SPDX-License-Identifier: MIT
#include "Src/TemporaryCopy.h"

#include "framework/platform/file.h"
#include "framework/platform/last_error.h"
#include "support/Paths.h"

namespace {

// Each behind a folder that ends in a separator already; the doubled one is part of the name that hosts see.
constexpr const char* kCopies = "\\FTP";
constexpr const char* kLocks = "\\FTP~";

bool isMissing(std::uint32_t error) noexcept {
  return error == platform::kErrorFileNotFound || error == platform::kErrorPathNotFound;
}

// "<above><folder>\<name>" into `path`, with the folder made.
template <std::size_t Capacity>
bool nameInOwnFolder(const char* above, const char* folder, const char* name,
                     BoundedText<Capacity>& path) noexcept {
  if (path.append(above) && path.append(folder)) {
    if (!platform::createOwnDirectory(path.c_str())) return false;
    if (path.append("\\") && path.append(name)) return true;
  }
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}

}  // namespace

TemporaryCopy::~TemporaryCopy() {
  const platform::LastErrorKeeper reason;
  if (m_lock.held()) static_cast<void>(DropLeftOver());
}

bool TemporaryCopy::Take(const char* path) {
  LockText lock;
  return MakeNames(path, lock) && m_lock.take(lock.c_str());
}

bool TemporaryCopy::MakeNames(const char* path, LockText& lock) noexcept {
  char above[kPathCapacity] = "";
  if (platform::temporaryFolder(above, sizeof above) == 0) return false;
  PathText fileName;
  SplitPath(path, nullptr, &fileName, nullptr);
  return nameInOwnFolder(above, kCopies, fileName.c_str(), m_name) &&
         nameInOwnFolder(above, kLocks, fileName.c_str(), lock);
}

bool TemporaryCopy::DropLeftOver() noexcept {
  // Windows deletes no read-only file.
  static_cast<void>(platform::setFileAttributes(m_name.c_str(), platform::kFileAttributeArchive));
  return platform::deleteFile(m_name.c_str()) || isMissing(platform::lastError());
}
