// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/SiteFile.h"

#include <memory>
#include <string>
#include <system_error>

#include "hosts/qxbrowse/System.h"
// Only now:
#include <shlobj.h>

namespace browse {
namespace {

constexpr DWORD kAnswerOfBusyMs = 5000;
constexpr DWORD kPauseMs = 10;
constexpr LONGLONG kLargestFile = 16 << 20;

struct Closer {
  using pointer = HANDLE;
  void operator()(HANDLE file) const noexcept { CloseHandle(file); }
};
using File = std::unique_ptr<HANDLE, Closer>;

[[noreturn]] void fail(const std::filesystem::path& file, DWORD error = GetLastError()) {
  const auto name = file.u8string();
  throw std::system_error(static_cast<int>(error), std::system_category(), {name.begin(), name.end()});
}

File open(const std::filesystem::path& file, DWORD access, DWORD share, DWORD how, DWORD flags) {
  HANDLE const opened = CreateFileW(file.c_str(), access, share, nullptr, how, flags, nullptr);
  return File(opened != INVALID_HANDLE_VALUE ? opened : nullptr);
}

std::string read(const std::filesystem::path& path) {
  const File file = open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, OPEN_EXISTING, 0);
  const DWORD error = GetLastError();
  if (!file && (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)) return {};
  LARGE_INTEGER size{};
  if (!file || !GetFileSizeEx(file.get(), &size)) fail(path);
  if (size.QuadPart > kLargestFile) fail(path, ERROR_FILE_TOO_LARGE);
  std::string text(static_cast<std::size_t>(size.QuadPart), '\0');
  DWORD got = 0;
  if (!ReadFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &got, nullptr)) fail(path);
  text.resize(got);
  return text;
}

void write(const std::filesystem::path& path, const std::string& text) {
  const File file = open(path, GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
  DWORD put = 0;
  const bool isWritten =
      file && WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &put, nullptr);
  if (!isWritten || !FlushFileBuffers(file.get())) fail(path);
}

std::filesystem::path with(std::filesystem::path file, const wchar_t* ending) { return file += ending; }

// Held by one program at a time, and by none that has ended.
File lock(const std::filesystem::path& file) {
  const std::filesystem::path path = with(file, L".lock");
  for (const ULONGLONG begin = GetTickCount64();;) {
    File held = open(path, GENERIC_WRITE, 0, OPEN_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE);
    if (held) return held;
    // The name of one that is just going away is refused for a moment.
    const DWORD error = GetLastError();
    const bool isHeld = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
    if (!isHeld || GetTickCount64() - begin > kAnswerOfBusyMs) fail(path, error);
    Sleep(kPauseMs);  // allowed: Sleep: the other program tells nobody that it is done
  }
}

void replace(const std::filesystem::path& file, const std::string& text) {
  const std::filesystem::path fresh = with(file, L".new");
  try {
    write(fresh, text);
    if (!MoveFileExW(fresh.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
      fail(file);
  } catch (...) {
    DeleteFileW(fresh.c_str());
    throw;
  }
}

}  // namespace

std::vector<Site> SiteFile::sites() const { return SiteText(read(m_file)).sites(); }

template <typename Change>
void SiteFile::change(Change&& change) const {
  if (m_file.has_parent_path()) std::filesystem::create_directories(m_file.parent_path());
  const File held = lock(m_file);
  SiteText text(read(m_file));
  change(text);
  replace(m_file, text.text());
}

void SiteFile::put(const Site& site, std::string_view formerName) const {
  change([&](SiteText& text) { text.put(site, formerName); });
}

void SiteFile::remove(std::string_view name) const {
  change([&](SiteText& text) { text.remove(name); });
}

std::filesystem::path SiteFile::setAside() const {
  const File held = lock(m_file);
  for (int number = 1;; ++number) {
    std::filesystem::path aside = m_file;
    aside.replace_extension("broken-" + std::to_string(number) + m_file.extension().string());
    if (MoveFileExW(m_file.c_str(), aside.c_str(), MOVEFILE_WRITE_THROUGH)) return aside;
    const DWORD error = GetLastError();
    if (error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS) fail(m_file, error);
  }
}

std::filesystem::path usualSiteFile() {
  wchar_t folder[MAX_PATH] = L"";
  const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, 0, folder);
  if (FAILED(result)) fail(L"%APPDATA%", static_cast<DWORD>(result));
  return std::filesystem::path(folder) / "qxbrowse" / "sites.ini";
}

}  // namespace browse
