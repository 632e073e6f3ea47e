// SPDX-License-Identifier: MIT
#include "hosts/shared/LibraryFile.h"

#include "hosts/shared/windows/System.h"

namespace hosts {
namespace {

constexpr DWORD kLongestPath = 32768;

std::filesystem::path fileOf(HMODULE module) {
  std::wstring path(kLongestPath, L'\0');
  path.resize(GetModuleFileNameW(module, path.data(), kLongestPath));
  return path;
}

}  // namespace

std::filesystem::path programFolder() { return fileOf(nullptr).parent_path(); }

std::vector<std::filesystem::path> libraryPlaces() { return {programFolder() / "ZRM_QXKT32x64.dll"}; }

std::optional<FileVersion> versionOf(void* library) {
  const std::filesystem::path file = fileOf(static_cast<HMODULE>(library));
  std::vector<std::byte> resource(GetFileVersionInfoSizeW(file.c_str(), nullptr));
  if (resource.empty() ||
      !GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data())) {
    return {};
  }
  void* found = nullptr;
  UINT size = 0;
  if (!VerQueryValueW(resource.data(), L"\\", &found, &size) || size < sizeof(VS_FIXEDFILEINFO)) return {};
  const DWORD version = static_cast<const VS_FIXEDFILEINFO*>(found)->dwFileVersionMS;
  return FileVersion{HIWORD(version), LOWORD(version)};
}

}  // namespace hosts
