// SPDX-License-Identifier: MIT
#include "framework/platform/proxies.h"

#include <array>

#include "framework/platform/last_error.h"
#include "framework/platform/proxy_finder.h"
#include "framework/platform/proxy_list.h"
#include "framework/windows/script_proxies.h"
#include "framework/windows/wide_text.h"
#include "framework/windows/winhttp_api.h"

namespace platform {

namespace {

constexpr const wchar_t* kSettings = L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

// Takes the text over.
std::string taken(LPWSTR text) {
  const auto narrow = text ? narrowFrom(text, CP_UTF8) : std::nullopt;
  ::GlobalFree(text);
  return narrow ? narrow->bytes : "";
}

class UserSettings final : public ProxySystem {
 public:
  // From the registry, for the system's function for all settings is one of a large library. Longer
  // exceptions than this fail to be read; the word that is looked for would be strange in them.
  bool sendsOwnMachineThrough() override {
    std::array<wchar_t, 4096> text{};
    DWORD size = sizeof(text);
    if (::RegGetValueW(HKEY_CURRENT_USER, kSettings, L"ProxyOverride", RRF_RT_REG_SZ, nullptr, text.data(),
                       &size) != ERROR_SUCCESS) {
      return false;
    }
    const auto narrow = narrowFrom(text.data(), CP_UTF8);
    return narrow && includesOwnMachine(narrow->bytes);
  }

  ProxySettings settings() override {
    const LastErrorKeeper keeper;
    WINHTTP_CURRENT_USER_IE_PROXY_CONFIG found{};
    const WinHttp* const api = systemWinHttp();
    if (!api || !api->settings(&found)) return {};
    return {found.fAutoDetect != FALSE, taken(found.lpszAutoConfigUrl), taken(found.lpszProxy),
            taken(found.lpszProxyBypass)};
  }

  std::optional<std::vector<Proxy>> askScript(const std::string& script, const ProxyTarget& target) override {
    const LastErrorKeeper keeper;
    const WinHttp* const api = systemWinHttp();
    return api ? askProxyScript(*api, script, target) : std::nullopt;
  }

  Time now() override { return std::chrono::steady_clock::now(); }
};

ProxyFinder& finder() {
  static UserSettings settings;
  static ProxyFinder instance(settings);
  return instance;
}

}  // namespace

std::optional<std::vector<Proxy>> proxiesAtOnce(const ProxyTarget& target) { return finder().atOnce(target); }

std::vector<Proxy> proxiesFor(const ProxyTarget& target) { return finder().find(target); }

}  // namespace platform
