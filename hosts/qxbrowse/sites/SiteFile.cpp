// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/sites/SiteFile.h"

#include <memory>
#include <string>
#include <system_error>

#include "hosts/qxbrowse/ui/System.h"
// Only now:
#include <shlobj.h>

namespace browse {
namespace {

constexpr DWORD kPatienceMs = 2000;  // others hold the file for a moment
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

// Another program has it, or it is just going away.
bool isBusy(DWORD error) { return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED; }

// Tries until it goes well, or fails for something else than others. The last error tells.
template <typename Try>
auto patiently(Try&& attempt) {
  for (const ULONGLONG begin = GetTickCount64();;) {
    auto result = attempt();
    const DWORD error = GetLastError();
    if (result || !isBusy(error) || GetTickCount64() - begin > kPatienceMs) {
      SetLastError(error);
      return result;
    }
    Sleep(kPauseMs);  // allowed: Sleep: others tell nobody that they are done
  }
}

File open(const std::filesystem::path& file, DWORD access, DWORD share, DWORD how, DWORD flags) {
  return patiently([&] {
    HANDLE const opened = CreateFileW(file.c_str(), access, share, nullptr, how, flags, nullptr);
    return File(opened != INVALID_HANDLE_VALUE ? opened : nullptr);
  });
}

bool rename(const std::filesystem::path& from, const std::filesystem::path& to, DWORD flags) {
  return patiently(
      [&] { return MoveFileExW(from.c_str(), to.c_str(), flags | MOVEFILE_WRITE_THROUGH) != 0; });
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
  File held = open(path, GENERIC_WRITE, 0, OPEN_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE);
  if (!held) fail(path);
  return held;
}

void replace(const std::filesystem::path& file, const std::string& text) {
  const std::filesystem::path fresh = with(file, L".new");
  try {
    write(fresh, text);
    if (!rename(fresh, file, MOVEFILE_REPLACE_EXISTING)) fail(file);
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
    if (rename(m_file, aside, 0)) return aside;
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
