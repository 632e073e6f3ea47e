// SPDX-License-Identifier: MIT
#include "Src/CollectedFile.h"

#include "framework/platform/last_error.h"

CollectedFile::~CollectedFile() {
  const platform::LastErrorKeeper reason;
  try {
    Flush();
  } catch (CFileException* exception) {
    exception->Delete();
  }
}

void CollectedFile::Write(const void* data, std::uint32_t size) {
  if (m_pieces.size() + size > kCapacity) Flush();
  if (size > kCapacity) {
    m_file.Write(data, size);
  } else {
    const char* const bytes = static_cast<const char*>(data);
    m_pieces.insert(m_pieces.end(), bytes, bytes + size);
  }
}

void CollectedFile::Flush() {
  const auto size = static_cast<std::uint32_t>(m_pieces.size());
  m_pieces.clear();  // first: what the system refuses once is not offered again
  if (size > 0) m_file.Write(m_pieces.data(), size);
}
