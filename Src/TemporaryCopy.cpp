// SPDX-License-Identifier: MIT
#include "Src/TemporaryCopy.h"

#include "framework/platform/file.h"
#include "framework/platform/last_error.h"
#include "support/Paths.h"

namespace {

constexpr const char* kFolder = "\\FTP";

}  // namespace

TemporaryCopy::~TemporaryCopy() {
  const platform::LastErrorKeeper reason;
  static_cast<void>(platform::setFileAttributes(m_name.c_str(), platform::kFileAttributeArchive));
  static_cast<void>(platform::deleteFile(m_name.c_str()));
}

bool TemporaryCopy::NameAfter(const char* path) noexcept {
  char folder[kPathCapacity] = "";
  if (platform::temporaryFolder(folder, sizeof folder) == 0) return false;
  PathText fileName;
  SplitPath(path, nullptr, &fileName, nullptr);
  // The folder ends in a separator already; the doubled one is part of the name that hosts see.
  if (!m_name.append(folder) || !m_name.append(kFolder)) return false;
  {
    const platform::LastErrorKeeper reason;
    static_cast<void>(platform::createDirectory(m_name.c_str()));  // it may exist already
  }
  if (m_name.append("\\") && m_name.append(fileName.c_str())) return true;
  platform::setLastError(platform::kErrorInvalidParameter);
  return false;
}
