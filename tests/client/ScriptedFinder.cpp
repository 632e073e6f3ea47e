// SPDX-License-Identifier: MIT
#include "tests/client/ScriptedFinder.h"

#include "framework/internet/InternetException.h"
#include "framework/platform/last_error.h"

void ScriptedFinder::throwsAtFirst(std::uint32_t error, int times) {
  answer = [error, times, then = answer](const std::string& pattern) mutable {
    if (times-- > 0) AfxThrowInternetException(error);
    return then(pattern);
  };
}

bool ScriptedFinder::FindFile(const char* pattern, std::uint32_t flagsGiven) {
  patterns.emplace_back(pattern != nullptr ? pattern : "(null)");
  flags.push_back(flagsGiven);
  m_entries.clear();
  m_next = 0;
  m_entries = answer(patterns.back());
  if (m_entries.empty()) platform::setLastError(platform::kErrorNoMoreFiles);
  return !m_entries.empty();
}

bool ScriptedFinder::FindNextFile() {
  ++walked;
  if (m_next < m_entries.size()) ++m_next;
  return repeatsTheLastEntry || m_next < m_entries.size();
}

std::size_t ScriptedFinder::EntriesLeft() const noexcept { return m_entries.size() - m_next; }

const Found& ScriptedFinder::current() const {
  static const Found none{};
  return m_next == 0 ? none : m_entries[m_next - 1];
}
