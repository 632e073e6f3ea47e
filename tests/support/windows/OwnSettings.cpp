// SPDX-License-Identifier: MIT
#include "tests/support/windows/OwnSettings.h"

#include <stdexcept>
#include <vector>

namespace testing_support {

namespace {

constexpr const char* kSettings = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

void require(LSTATUS status, const char* what) {
  if (status != ERROR_SUCCESS) throw std::runtime_error(std::string(what) + ": " + std::to_string(status));
}

void setValue(HKEY root, const std::string& path, const char* name, DWORD type, const void* data,
              std::size_t size) {
  require(::RegSetKeyValueA(root, path.c_str(), name, type, data, static_cast<DWORD>(size)), name);
}

void appendNumber(std::vector<std::uint8_t>& bytes, std::uint32_t number) {
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(number >> shift));
}

void appendText(std::vector<std::uint8_t>& bytes, const std::string& text) {
  appendNumber(bytes, static_cast<std::uint32_t>(text.size()));
  bytes.insert(bytes.end(), text.begin(), text.end());
}

// As the system's dialog leaves them: a version, a count of changes, flags, and the texts; 32 bytes it keeps
// for later.
std::vector<std::uint8_t> binaryForm(const InternetSettings& settings) {
  constexpr std::uint32_t kVersion = 0x46, kDirect = 1, kManual = 2, kScript = 4, kDetects = 8;
  std::uint32_t flags = kDirect;
  if (!settings.proxies.empty()) flags |= kManual;
  if (!settings.script.empty()) flags |= kScript;
  if (settings.detects) flags |= kDetects;
  std::vector<std::uint8_t> bytes;
  for (const std::uint32_t number : {kVersion, std::uint32_t{1}, flags}) appendNumber(bytes, number);
  for (const std::string& text : {settings.proxies, settings.exceptions, settings.script})
    appendText(bytes, text);
  bytes.resize(bytes.size() + 32);
  return bytes;
}

}  // namespace

OwnSettings::OwnSettings(const InternetSettings& settings)
    : path_("Software\\QXTests-" + std::to_string(::GetCurrentProcessId())) {
  require(::RegCreateKeyExA(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                            KEY_ALL_ACCESS, nullptr, &key_, nullptr),
          "RegCreateKeyEx");
  require(::RegOverridePredefKey(HKEY_CURRENT_USER, key_), "RegOverridePredefKey");
  set(settings);
}

OwnSettings::~OwnSettings() {
  ::RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
  ::RegCloseKey(key_);
  ::RegDeleteTreeA(HKEY_CURRENT_USER, path_.c_str());
}

void OwnSettings::set(const InternetSettings& settings) const {
  const std::string& exceptions = settings.exceptions;
  setValue(HKEY_CURRENT_USER, kSettings, "ProxyOverride", REG_SZ, exceptions.c_str(), exceptions.size() + 1);
  const auto bytes = binaryForm(settings);
  setValue(HKEY_CURRENT_USER, std::string(kSettings) + "\\Connections", "DefaultConnectionSettings",
           REG_BINARY, bytes.data(), bytes.size());
}

}  // namespace testing_support
