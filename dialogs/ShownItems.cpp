// SPDX-License-Identifier: MIT
#include "dialogs/ShownItems.h"

#include <memory>
#include <utility>

#include "dialogs/ListItems.h"

namespace {

struct CloseSearch {
  void operator()(HANDLE search) const noexcept { FindClose(search); }
};

// The entries of the current directory that match, as long as `visit` is true.
template <typename Visit>
void forEachEntry(const std::wstring& pattern, const Visit& visit) {
  WIN32_FIND_DATAW entry{};
  const HANDLE first = FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch,
                                        nullptr, FIND_FIRST_EX_LARGE_FETCH);
  if (first == INVALID_HANDLE_VALUE) return;
  const std::unique_ptr<void, CloseSearch> search(first);
  while (visit(entry) && FindNextFileW(search.get(), &entry) != FALSE) {
  }
}

bool isDirectory(DWORD attributes) noexcept { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }

// The one file with this name and any extension; "" when there are more, or none.
std::wstring onlyFile(const std::wstring& nameWithoutExtension) {
  std::wstring name;
  int count = 0;
  forEachEntry(nameWithoutExtension + L".*", [&](const WIN32_FIND_DATAW& entry) {
    if (!isDirectory(entry.dwFileAttributes)) name = entry.cFileName;
    return ++count < 2;
  });
  return count == 1 ? name : L"";
}

}  // namespace

std::wstring ShownItems::NameOf(HWND list, int index) {
  std::wstring name = m_shell.NameOf(index, KeptText(list, index));
  if (!name.empty() && exists(name)) return name;
  std::wstring text = ItemText(list, index);
  if (exists(text)) return text;
  name = onlyFile(text);
  return name.empty() ? text : name;
}

bool ShownItems::IsDirectory(const std::wstring& name) { return isDirectory(attributesOf(name)); }

void ShownItems::LookAtAll() {
  if (std::exchange(m_lookedAtAll, true)) return;
  forEachEntry(L"*", [this](const WIN32_FIND_DATAW& entry) {
    m_attributes.emplace(entry.cFileName, entry.dwFileAttributes);
    return true;
  });
}

DWORD ShownItems::attributesOf(const std::wstring& name) {
  const auto known = m_attributes.find(name);
  if (known != m_attributes.end()) return known->second;
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES) m_attributes.emplace(name, attributes);
  return attributes;
}
