// SPDX-License-Identifier: MIT
#include "Src/LocalFile.h"

#include "framework/platform/last_error.h"

namespace {

constexpr std::size_t kCollected = 256 * 1024;
constexpr std::uint32_t kTextSize = 1024;

}  // namespace

template <typename Work>
bool LocalFile::Guard(Work&& work) {
  try {
    return work();
  } catch (CFileException* exception) {
    const std::uint32_t error = exception->m_lOsError;
    char text[kTextSize] = "";
    exception->GetErrorMessage(text, kTextSize);
    exception->Delete();
    m_client.OnIPError(error, text, m_pRetries);
    platform::setLastError(error);
    return false;
  }
}

void LocalFile::Flush() {
  m_file.Write(m_collected.data(), static_cast<std::uint32_t>(m_collected.size()));
  m_collected.clear();
}

bool LocalFile::SeekBehindContent() {
  return Guard([&] {
    if (m_file.SeekToEnd() != 0) return true;
    platform::setLastError(platform::kErrorHandleEof);
    return false;
  });
}

bool LocalFile::Write(const void* data, std::uint32_t size) {
  return Guard([&] {
    if (m_collected.size() + size > kCollected) Flush();
    if (size > kCollected) {
      m_file.Write(data, size);
    } else {
      const char* bytes = static_cast<const char*>(data);
      m_collected.insert(m_collected.end(), bytes, bytes + size);
    }
    return true;
  });
}

bool LocalFile::Close() {
  return Guard([&] {
    Flush();
    m_file.Close();
    return true;
  });
}
