// SPDX-License-Identifier: MIT
// The system's two resolvers, made up: what each is asked, and what becomes of its answers.
#include "framework/windows/script_proxies.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using platform::Proxy;
using platform::ProxyTarget;

const ProxyTarget kFtp{"ftp", "ftp.tests.example", 21};

struct Entry {
  BOOL isProxy;
  INTERNET_SCHEME scheme;
  const wchar_t* host;
  INTERNET_PORT port;
};

// One for the process: the system's functions have no object.
struct MadeUp {
  std::vector<std::wstring> addresses;
  std::vector<std::wstring> scripts;  // "" for a search
  bool knowsFtp = true;
  bool hasResolver = true;
  DWORD error = ERROR_SUCCESS;
  std::wstring list;  // empty: direct
  std::vector<Entry> entries;
  int open = 0;  // handles, results
  WINHTTP_STATUS_CALLBACK callback = nullptr;
  std::vector<std::thread> threads;
};
MadeUp* theSystem = nullptr;

HINTERNET newHandle() {
  ++theSystem->open;
  return theSystem;
}

HINTERNET WINAPI openSession(LPCWSTR, DWORD, LPCWSTR, LPCWSTR, DWORD) { return newHandle(); }

BOOL WINAPI closeHandle(HINTERNET) {
  --theSystem->open;
  return TRUE;
}

DWORD note(LPCWSTR address, const WINHTTP_AUTOPROXY_OPTIONS& options) {
  theSystem->addresses.emplace_back(address);
  theSystem->scripts.emplace_back(options.lpszAutoConfigUrl ? options.lpszAutoConfigUrl : L"");
  EXPECT_EQ(options.dwFlags,
            options.lpszAutoConfigUrl ? WINHTTP_AUTOPROXY_CONFIG_URL : WINHTTP_AUTOPROXY_AUTO_DETECT);
  EXPECT_FALSE(options.fAutoLogonIfChallenged);
  const bool ftp = std::wstring(address).starts_with(L"ftp:");
  return ftp && !theSystem->knowsFtp ? ERROR_WINHTTP_UNRECOGNIZED_SCHEME : theSystem->error;
}

BOOL WINAPI ask(HINTERNET, LPCWSTR address, WINHTTP_AUTOPROXY_OPTIONS* options, WINHTTP_PROXY_INFO* info) {
  const DWORD error = note(address, *options);
  ::SetLastError(error);
  if (error != ERROR_SUCCESS) return FALSE;
  *info = {WINHTTP_ACCESS_TYPE_NO_PROXY, nullptr, nullptr};
  if (theSystem->list.empty()) return TRUE;
  const std::size_t size = (theSystem->list.size() + 1) * sizeof(wchar_t);
  info->dwAccessType = WINHTTP_ACCESS_TYPE_NAMED_PROXY;
  info->lpszProxy = static_cast<LPWSTR>(::GlobalAlloc(GMEM_FIXED, size));
  std::memcpy(info->lpszProxy, theSystem->list.c_str(), size);
  return TRUE;
}

DWORD WINAPI createResolver(HINTERNET, HINTERNET* resolver) {
  if (!theSystem->hasResolver) return ERROR_WINHTTP_AUTO_PROXY_SERVICE_ERROR;
  *resolver = newHandle();
  return ERROR_SUCCESS;
}

WINHTTP_STATUS_CALLBACK WINAPI setCallback(HINTERNET, WINHTTP_STATUS_CALLBACK callback, DWORD, DWORD_PTR) {
  theSystem->callback = callback;
  return nullptr;
}

DWORD WINAPI startAsking(HINTERNET resolver, PCWSTR address, WINHTTP_AUTOPROXY_OPTIONS* options,
                         DWORD_PTR context) {
  const DWORD error = note(address, *options);
  theSystem->threads.emplace_back([=] {
    WINHTTP_ASYNC_RESULT failure{0, error};
    const DWORD status =
        error ? WINHTTP_CALLBACK_STATUS_REQUEST_ERROR : WINHTTP_CALLBACK_STATUS_GETPROXYFORURL_COMPLETE;
    theSystem->callback(resolver, context, status, error ? &failure : nullptr, sizeof(failure));
  });
  return ERROR_IO_PENDING;
}

DWORD WINAPI resultOf(HINTERNET, WINHTTP_PROXY_RESULT* result) {
  ++theSystem->open;
  *result = {static_cast<DWORD>(theSystem->entries.size()),
             new WINHTTP_PROXY_RESULT_ENTRY[theSystem->entries.size() + 1]};
  for (std::size_t i = 0; i < theSystem->entries.size(); ++i) {
    const Entry& entry = theSystem->entries[i];
    result->pEntries[i] = {entry.isProxy, FALSE, entry.scheme, const_cast<PWSTR>(entry.host), entry.port};
  }
  return ERROR_SUCCESS;
}

void WINAPI freeResult(WINHTTP_PROXY_RESULT* result) {
  --theSystem->open;
  delete[] result->pEntries;
}

struct ScriptProxies : testing::Test {
  ScriptProxies() { theSystem = &system; }
  ~ScriptProxies() override {
    for (std::thread& thread : system.threads) thread.join();
    EXPECT_EQ(system.open, 0) << "handles and results that nobody gave back";
    theSystem = nullptr;
  }

  // "none", or the proxies.
  std::string ask(const platform::WinHttp& api, const ProxyTarget& target = kFtp,
                  const char* script = "http://s/") {
    const auto proxies = platform::askProxyScript(api, script, target);
    if (!proxies) return "none";
    constexpr std::array kKinds{"direct", "http", "socks", "unsupported"};
    std::string text;
    for (const Proxy& proxy : *proxies) {
      text.append(text.empty() ? "" : ", ").append(kKinds.at(static_cast<std::size_t>(proxy.kind)));
      if (!proxy.host.empty()) text.append(" " + proxy.host + " " + std::to_string(proxy.port));
    }
    return text;
  }

  MadeUp system;
  const platform::WinHttp seven{&openSession, &closeHandle, nullptr, &::ask};
  const platform::WinHttp eight{&openSession, &closeHandle, nullptr,   &::ask,     &createResolver,
                                &setCallback, &startAsking, &resultOf, &freeResult};
};

TEST_F(ScriptProxies, OfTheLaterResolverKeepTheirKindsAndTheirOrder) {
  system.entries = {{TRUE, INTERNET_SCHEME_HTTP, L"a.test", 80},
                    {TRUE, INTERNET_SCHEME_SOCKS, L"b.test", 1080},
                    {FALSE, 0, nullptr, 0},
                    {TRUE, INTERNET_SCHEME_HTTP, L"::1", 81},
                    {TRUE, INTERNET_SCHEME_HTTPS, L"c.test", 443}};
  EXPECT_EQ(ask(eight), "http a.test 80, socks b.test 1080, direct, http ::1 81, unsupported");
}

TEST_F(ScriptProxies, OfTheEarlierResolverAreAList) {
  EXPECT_EQ(ask(seven), "");
  system.list = L"a.test:80;b.test";
  EXPECT_EQ(ask(seven), "http a.test 80, http b.test 80");
}

TEST_F(ScriptProxies, ComeFromTheEarlierResolverWhereTheLaterOneCannotBeHad) {
  system.list = L"a.test:80";
  system.hasResolver = false;
  EXPECT_EQ(ask(eight), "http a.test 80");
}

TEST_F(ScriptProxies, AreAskedForByTheTargetsAddress) {
  ask(eight);
  ask(seven, {"http", "::1", 8080}, "");
  EXPECT_EQ(system.addresses,
            (std::vector<std::wstring>{L"ftp://ftp.tests.example:21/", L"http://[::1]:8080/"}));
  EXPECT_EQ(system.scripts, (std::vector<std::wstring>{L"http://s/", L""}));
}

TEST_F(ScriptProxies, OfFilesAreThoseOfTheWebWhereTheResolverKnowsNothingElse) {
  system.knowsFtp = false;
  system.list = L"a.test:80";
  EXPECT_EQ(ask(seven), "http a.test 80");
  EXPECT_EQ(system.addresses.back(), L"http://ftp.tests.example:21/");
  system.entries = {{TRUE, INTERNET_SCHEME_SOCKS, L"b.test", 1080}};
  EXPECT_EQ(ask(eight), "socks b.test 1080");
}

TEST_F(ScriptProxies, AreNoneWhereNoScriptIsFoundOrItCannotBeRun) {
  for (const int error : {ERROR_WINHTTP_AUTODETECTION_FAILED, ERROR_WINHTTP_UNABLE_TO_DOWNLOAD_SCRIPT,
                          ERROR_WINHTTP_BAD_AUTO_PROXY_SCRIPT, ERROR_WINHTTP_LOGIN_FAILURE}) {
    system.error = static_cast<DWORD>(error);
    EXPECT_EQ(ask(eight), "none");
    EXPECT_EQ(ask(seven), "none");
  }
  EXPECT_EQ(system.addresses.size(), 8U) << "a search that found nothing is not made twice";
}

}  // namespace
