// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/LocalFolder.h"

#include <array>
#include <memory>
#include <system_error>

#include "hosts/qxbrowse/ui/Names.h"

namespace browse {
namespace {

struct SearchDeleter {
  void operator()(HANDLE search) const { FindClose(search); }
};
using Search = std::unique_ptr<void, SearchDeleter>;

[[noreturn]] void throwError(DWORD number) {
  throw std::system_error(static_cast<int>(number), std::system_category());
}

void throwIfFailed(BOOL ok) {
  if (!ok) throwError(GetLastError());
}

std::int64_t localTime(const FILETIME& time) {
  SYSTEMTIME universal{}, local{};
  FILETIME shown{};
  const bool isTime = FileTimeToSystemTime(&time, &universal) &&
                      SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local) &&
                      SystemTimeToFileTime(&local, &shown);
  return isTime ? static_cast<std::int64_t>(std::uint64_t{shown.dwHighDateTime} << 32 | shown.dwLowDateTime)
                : 0;
}

Item itemOf(const WIN32_FIND_DATAW& found) {
  const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  const std::uint64_t size = std::uint64_t{found.nFileSizeHigh} << 32 | found.nFileSizeLow;
  return {found.cFileName, isFolder, isFolder ? 0 : size, localTime(found.ftLastWriteTime)};
}

bool isDots(const Item& item) { return item.name == L"." || item.name == L".."; }

std::vector<Item> drives() {
  std::vector<Item> items;
  const DWORD bits = GetLogicalDrives();
  for (wchar_t letter = L'A'; letter <= L'Z'; ++letter) {
    const bool isThere = (bits >> (letter - L'A') & 1) != 0;
    if (isThere) items.push_back({{letter, L':', L'\\'}, true, 0, 0});
  }
  return items;
}

// The zero-terminated list of zero-terminated paths that the shell takes.
std::wstring pathList(const std::vector<Place>& places) {
  std::wstring list;
  for (const Place& place : places) list.append(place.path).push_back(L'\0');
  return list;
}

}  // namespace

std::vector<Item> readLocalFolder(const std::wstring& path) {
  if (path.empty()) return drives();
  WIN32_FIND_DATAW found{};
  HANDLE const first = FindFirstFileExW(localPath(path, L"*").c_str(), FindExInfoBasic, &found,
                                        FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
  if (first == INVALID_HANDLE_VALUE) throwError(GetLastError());
  const Search search(first);
  std::vector<Item> items;
  do {
    Item item = itemOf(found);
    if (!isDots(item)) items.push_back(std::move(item));
  } while (FindNextFileW(first, &found));
  if (GetLastError() != ERROR_NO_MORE_FILES) throwError(GetLastError());
  return items;
}

void createLocalFolder(const std::wstring& path) { throwIfFailed(CreateDirectoryW(path.c_str(), nullptr)); }

void renameLocal(const std::wstring& from, const std::wstring& to) {
  throwIfFailed(MoveFileExW(from.c_str(), to.c_str(), 0));
}

void removeLocal(HWND owner, const std::vector<Place>& places) {
  const std::wstring paths = pathList(places);
  SHFILEOPSTRUCTW operation{};
  operation.hwnd = owner;
  operation.wFunc = FO_DELETE;
  operation.pFrom = paths.c_str();
  operation.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_WANTNUKEWARNING;
  SHFileOperationW(&operation);
}

Place localPlace(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data);
  const bool isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return {path, isFolder, isFolder ? 0 : std::uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow};
}

std::wstring homeFolder() {
  std::array<wchar_t, MAX_PATH> path{};
  const DWORD length = GetEnvironmentVariableW(L"USERPROFILE", path.data(), static_cast<DWORD>(path.size()));
  return length == 0 || length >= path.size() ? std::wstring() : std::wstring(path.data(), length);
}

}  // namespace browse
