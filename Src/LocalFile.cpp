// SPDX-License-Identifier: MIT
#include "Src/LocalFile.h"

#include "Src/HostCall.h"
#include "framework/platform/last_error.h"

namespace {

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
    HostCall([&] { m_client.OnIPError(error, text, m_pRetries); });
    platform::setLastError(error);
    return false;
  }
}

bool LocalFile::SeekBehindContent() {
  return Guard([&] {
    if (m_file.SeekToEnd() != 0) return true;
    platform::setLastError(platform::kErrorHandleEof);
    return false;
  });
}

char* LocalFile::Room(std::uint32_t size) {
  char* room = nullptr;
  static_cast<void>(Guard([&] {
    room = m_collected.Room(size);
    return true;
  }));
  return room;
}

bool LocalFile::Write(const void* data, std::uint32_t size) {
  return Guard([&] {
    m_collected.Flush();
    m_file.Write(data, size);
    return true;
  });
}

bool LocalFile::Flush() {
  return Guard([&] {
    m_collected.Flush();
    return true;
  });
}

bool LocalFile::Close() {
  return Guard([&] {
    m_collected.Flush();
    m_file.Close();
    return true;
  });
}
