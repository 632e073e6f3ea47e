// SPDX-License-Identifier: MIT
#include "dialogs/ShownItems.h"

#include "dialogs/ListItems.h"

namespace {

// The one file with this name and any extension; "" when there are more, or none.
std::wstring onlyFile(const std::wstring& nameWithoutExtension) {
  WIN32_FIND_DATAW entry{};
  const HANDLE search = FindFirstFileW((nameWithoutExtension + L".*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return {};
  const std::wstring name = entry.cFileName;
  const bool directory = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  const bool more = FindNextFileW(search, &entry) != FALSE;
  FindClose(search);
  return directory || more ? L"" : name;
}

}  // namespace

std::wstring ShownItems::NameOf(HWND list, int index) {
  std::wstring text = ItemText(list, index);
  std::wstring name = m_shell.NameOf(index, text);
  if (!name.empty() && exists(name)) return name;
  if (exists(text)) return text;
  name = onlyFile(text);
  return name.empty() ? text : name;
}

bool ShownItems::IsDirectory(const std::wstring& name) {
  return (attributesOf(name) & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

DWORD ShownItems::attributesOf(const std::wstring& name) {
  const auto known = m_attributes.find(name);
  if (known != m_attributes.end()) return known->second;
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES) m_attributes.emplace(name, attributes);
  return attributes;
}
