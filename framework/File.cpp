// SPDX-License-Identifier: MIT
#include "framework/File.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "framework/platform/last_error.h"

namespace {

[[noreturn]] void throwLastError() { throw new CFileException(platform::lastError()); }

platform::FileAccess accessOf(std::uint32_t flags) {
  if ((flags & CFile::modeReadWrite) != 0) return platform::FileAccess::readWrite;
  return (flags & CFile::modeWrite) != 0 ? platform::FileAccess::write : platform::FileAccess::read;
}

}  // namespace

bool CFileException::GetErrorMessage(char* buffer, std::uint32_t size) const noexcept {
  if (buffer == nullptr || size == 0) return false;
  buffer[0] = '\0';
  try {
    std::string text = platform::systemErrorText(m_lOsError);
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) text.pop_back();
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
    return length > 0;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

CFile::CFile(const char* path, std::uint32_t flags) {
  if (!Open(path, flags)) throwLastError();
}

bool CFile::Open(const char* path, std::uint32_t flags) noexcept {
  const auto creation =
      (flags & modeCreate) != 0 ? platform::FileCreation::createAlways : platform::FileCreation::openExisting;
  return m_file.open(path, accessOf(flags), creation);
}

std::uint32_t CFile::Read(void* buffer, std::uint32_t size) {
  std::uint32_t done = 0;
  while (done < size) {
    const std::int64_t read = m_file.read(static_cast<char*>(buffer) + done, size - done);
    if (read < 0) throwLastError();
    if (read == 0) break;
    done += static_cast<std::uint32_t>(read);
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
