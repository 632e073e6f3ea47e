// SPDX-License-Identifier: MIT
#include "framework/File.h"

#include <exception>
#include <string>

#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"

namespace {

using platform::FileAccess;
using platform::FileCreation;

// A file that waits for somebody (a pipe) ends its wait when the thread has to stop, and that is no failure.
[[noreturn]] void throwLastError() {
  const std::uint32_t error = platform::lastError();
  platform::throwIfStopped();
  throw new CFileException(error);
}

FileAccess accessOf(std::uint32_t flags) noexcept {
  if ((flags & CFile::modeReadWrite) != 0) return FileAccess::readWrite;
  return (flags & CFile::modeWrite) != 0 ? FileAccess::write : FileAccess::read;
}

}  // namespace

bool CFileException::GetErrorMessage(char* buffer, std::uint32_t size) const noexcept {
  if (buffer == nullptr || size == 0) return false;
  buffer[0] = '\0';
  try {
    std::string text = platform::systemErrorText(m_lOsError);
    text.erase(text.find_last_not_of("\r\n") + 1);
    buffer[text.copy(buffer, size - 1)] = '\0';
    return !text.empty();
  } catch (const std::exception&) {
    return false;  // no memory for a text
  }
}

CFile::CFile(const char* path, std::uint32_t flags) {
  if (!Open(path, flags)) throwLastError();
}

bool CFile::Open(const char* path, std::uint32_t flags) noexcept {
  const auto creation = (flags & modeCreate) != 0 ? FileCreation::createAlways : FileCreation::openExisting;
  if (!m_file.open(path, accessOf(flags), creation)) return false;
  if ((flags & ownerOnly) == 0 || m_file.keepToOwner()) return true;
  const platform::LastErrorKeeper reason;
  m_file.close();
  return false;
}

std::uint32_t CFile::Read(void* buffer, std::uint32_t size) {
  std::uint32_t done = 0;
  while (done < size) {
    const std::int64_t got = m_file.read(static_cast<char*>(buffer) + done, size - done);
    if (got < 0) throwLastError();
    if (got == 0) break;
    done += static_cast<std::uint32_t>(got);
  }
  return done;
}

void CFile::Write(const void* data, std::uint32_t size) {
  if (!m_file.write(data, size)) throwLastError();
}

std::uint64_t CFile::GetLength() const {
  const std::int64_t size = m_file.size();
  if (size < 0) throwLastError();
  return static_cast<std::uint64_t>(size);
}

std::uint64_t CFile::SeekToEnd() {
  const std::int64_t position = m_file.seekToEnd();
  if (position < 0) throwLastError();
  return static_cast<std::uint64_t>(position);
}

void CFile::Close() {
  if (!m_file.close()) throwLastError();
}
