// SPDX-License-Identifier: MIT
#include "Src/CollectedFile.h"

#include <algorithm>
#include <utility>

#include "framework/platform/last_error.h"

CollectedFile::~CollectedFile() {
  const platform::LastErrorKeeper reason;
  try {
    Flush();
  } catch (CFileException* exception) {
    exception->Delete();
  }
}

char* CollectedFile::Room(std::uint32_t size) {
  if (m_used + size > kEnough) Flush();
  if (m_used + size > m_pieces.size()) m_pieces.resize(std::max(m_used + size, 2 * m_pieces.size()));
  return m_pieces.data() + m_used;
}

void CollectedFile::Flush() {
  // First: what the system refuses once is not offered again.
  const auto size = static_cast<std::uint32_t>(std::exchange(m_used, 0));
  if (size > 0) m_file.Write(m_pieces.data(), size);
}
