// SPDX-License-Identifier: MIT
// The application's profile strings, kept in a private profile file.
#include <string_view>

#include "framework/WinApp.h"
#include "framework/ui/NarrowText.h"
#include "framework/windows/windows_api.h"
// Only now:
#include <shlobj.h>

namespace {

constexpr DWORD kLongestModulePath = 32768;
constexpr std::size_t kUsualText = 512;
constexpr std::size_t kLongestText = 1 << 20;

// The module that this code was linked into, not the program that has loaded it.
std::string modulePath() {
  HMODULE module = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const char*>(&modulePath), &module);
  std::string path(kLongestModulePath, '\0');
  path.resize(GetModuleFileNameA(module, path.data(), kLongestModulePath));
  return path;
}

std::string profileName(const CWinApp& app) {
  if (app.m_pszProfileName != nullptr) return app.m_pszProfileName;
  const std::string path = modulePath();
  const std::string_view name = lastComponent(path);
  return std::string(name.substr(0, findLastOf(name, "."))) + ".INI";
}

// A bare name would lead to the Windows folder, where a user may not write.
std::string profileFile(const CWinApp& app) {
  std::string name = profileName(app);
  if (findLastOf(name, "\\/:") != std::string_view::npos) return name;
  char folder[MAX_PATH] = "";
  const bool known = SHGetFolderPathA(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT,
                                      folder) == S_OK;
  return known ? std::string(folder) + '\\' + name : name;
}

bool fitsALine(std::string_view text) { return text.find_first_of("\r\n") == std::string_view::npos; }

// Readers of the file drop blanks around a value and then one pair of quotes. A pair more keeps both.
std::string quotedIfNeeded(std::string_view value) {
  constexpr std::string_view kDropped = " \t\v\f\"'";
  const bool plain = value.empty() || (kDropped.find(value.front()) == std::string_view::npos &&
                                       kDropped.find(value.back()) == std::string_view::npos);
  return plain ? std::string(value) : '"' + std::string(value) + '"';
}

}  // namespace

std::string CWinApp::GetProfileString(const char* section, const char* entry, const char* defaultText) const {
  if (section == nullptr || entry == nullptr) return defaultText;
  const std::string file = profileFile(*this);
  std::string text;
  DWORD length = 0;
  // A text that was cut fills its buffer but for the terminator.
  for (std::size_t size = kUsualText; size <= kLongestText && length + 1 >= text.size(); size *= 4) {
    text.resize(size);
    length = GetPrivateProfileStringA(section, entry, defaultText, text.data(), static_cast<DWORD>(size),
                                      file.c_str());
  }
  text.resize(length);
  return text;
}

bool CWinApp::WriteProfileString(const char* section, const char* entry, const char* value) const {
  if (section == nullptr || entry == nullptr || !fitsALine(section) || !fitsALine(entry)) return false;
  const std::string file = profileFile(*this);
  if (value == nullptr) return WritePrivateProfileStringA(section, entry, nullptr, file.c_str()) != 0;
  return fitsALine(value) &&
         WritePrivateProfileStringA(section, entry, quotedIfNeeded(value).c_str(), file.c_str()) != 0;
}
