// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/lists/FileKinds.h"

#include "hosts/qxbrowse/lists/ItemList.h"
#include "hosts/qxbrowse/ui/Texts.h"
// Only now:
#include <commoncontrols.h>

namespace browse {
namespace {

constexpr UINT kLargeFrom = 144;  // dots per inch from which small images are too small

// A server can have any number of extensions; what the shell knows is far less.
constexpr std::size_t kMostKinds = 10'000;

std::wstring ownTypeName(const Item& item, std::wstring extension) {
  if (item.isFolder) return text(Text::typeFolder);
  if (extension.empty()) return text(Text::typeFile);
  CharUpperBuffW(extension.data(), static_cast<DWORD>(extension.size()));
  return text(Text::typeFileOf, {extension});
}

}  // namespace

HIMAGELIST shellImages(UINT dpi) {
  void* images = nullptr;
  const int size = dpi >= kLargeFrom ? SHIL_LARGE : SHIL_SMALL;
  if (FAILED(SHGetImageList(size, __uuidof(IImageList), &images)) || images == nullptr) return nullptr;
  static_cast<IUnknown*>(images)->Release();  // it is the shell's, and lives as long as the program
  return static_cast<HIMAGELIST>(images);
}

const FileKinds::Kind& FileKinds::kindOf(const Item& item) {
  const std::wstring extension = item.isFolder ? L"/" : extensionOf(item);
  const auto known = m_kinds.find(extension);
  if (known != m_kinds.end()) return known->second;
  if (m_kinds.size() >= kMostKinds) m_kinds.clear();
  return m_kinds.emplace(extension, ask(item, extension)).first->second;
}

FileKinds::Kind FileKinds::ask(const Item& item, const std::wstring& extension) {
  const std::wstring example = item.isFolder ? L"folder" : L"file." + extension;
  const DWORD attributes = item.isFolder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
  SHFILEINFOW info{};
  SHGetFileInfoW(example.c_str(), attributes, &info, sizeof info,
                 SHGFI_USEFILEATTRIBUTES | SHGFI_SYSICONINDEX | SHGFI_TYPENAME);
  const std::wstring name = info.szTypeName;
  return {info.iIcon, name.empty() ? ownTypeName(item, extension) : name};
}

}  // namespace browse
