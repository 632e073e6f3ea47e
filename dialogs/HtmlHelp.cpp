// SPDX-License-Identifier: MIT
#include "dialogs/HtmlHelp.h"

#include "support/BoundedText.h"

namespace {

using HtmlHelpEntry = HWND(WINAPI*)(HWND, LPCSTR, UINT, DWORD_PTR);
using LibraryPath = BoundedText<MAX_PATH>;

constexpr const char* kServerKey = "CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";
constexpr const char* kControlName = "hhctrl.ocx";
constexpr WORD kEntryOrdinal = 14;  // the entry for narrow texts

HMODULE g_hHelpLibrary = nullptr;
HtmlHelpEntry g_pfnHtmlHelp = nullptr;
bool g_bHelpFailed = false;

bool expand(const char* text, LibraryPath& path) noexcept {
  char expanded[MAX_PATH];
  const DWORD needed = ExpandEnvironmentStringsA(text, expanded, sizeof expanded);
  return needed != 0 && needed <= sizeof expanded && path.assign(expanded);
}

bool readServerPath(HKEY key, LibraryPath& path) noexcept {
  char value[MAX_PATH + 1] = "";  // a stored text need not have a terminator
  DWORD type = REG_NONE;
  DWORD size = MAX_PATH;
  if (RegQueryValueExA(key, nullptr, nullptr, &type, reinterpret_cast<BYTE*>(value), &size) !=
      ERROR_SUCCESS) {
    return false;
  }
  return type == REG_EXPAND_SZ ? expand(value, path) : path.assign(value);
}

bool findServerPath(LibraryPath& path) noexcept {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_CLASSES_ROOT, kServerKey, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  const bool found = readServerPath(key, path);
  RegCloseKey(key);
  return found;
}

HMODULE loadHelpLibrary() noexcept {
  LibraryPath path;
  HMODULE library = nullptr;
  if (findServerPath(path)) library = LoadLibraryA(path.c_str());
  return library != nullptr ? library : LoadLibraryA(kControlName);
}

void locate() noexcept {
  if (g_hHelpLibrary == nullptr) g_hHelpLibrary = loadHelpLibrary();
  if (g_hHelpLibrary != nullptr) {
    const auto entry =
        reinterpret_cast<void*>(GetProcAddress(g_hHelpLibrary, MAKEINTRESOURCEA(kEntryOrdinal)));
    g_pfnHtmlHelp = reinterpret_cast<HtmlHelpEntry>(entry);
  }
  g_bHelpFailed = g_pfnHtmlHelp == nullptr;
}

}  // namespace

HWND CallHtmlHelp(HWND window, const char* file, UINT command, DWORD_PTR data) noexcept {
  if (g_pfnHtmlHelp == nullptr && !g_bHelpFailed) locate();
  return g_pfnHtmlHelp != nullptr ? g_pfnHtmlHelp(window, file, command, data) : nullptr;
}
