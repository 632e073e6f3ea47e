// SPDX-License-Identifier: MIT
#include "framework/windows/script_proxies.h"

#include <memory>
#include <type_traits>

#include "framework/platform/proxy_list.h"
#include "framework/platform/proxy_text.h"
#include "framework/windows/wide_text.h"

namespace platform {

namespace {

struct Asked {
  DWORD error = ERROR_SUCCESS;
  std::vector<Proxy> proxies;
};

struct Question {
  const WinHttp& api;
  std::wstring script;  // empty: to be looked for
  const ProxyTarget& target;
  std::wstring address;  // of the target
};

struct HandleCloser {
  decltype(&::WinHttpCloseHandle) close;
  void operator()(HINTERNET handle) const noexcept { close(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<HINTERNET>, HandleCloser>;

Handle openSession(const WinHttp& api, DWORD flags) {
  return {api.open(nullptr, WINHTTP_ACCESS_TYPE_NO_PROXY, nullptr, nullptr, flags), HandleCloser{api.close}};
}

std::wstring wide(const std::string& text) {
  return wideFrom(text, CP_UTF8, InvalidBytes::kReplaced).value_or(L"");
}

std::string utf8(const wchar_t* text) {
  const auto narrow = text ? narrowFrom(text, CP_UTF8) : std::nullopt;
  return narrow ? narrow->bytes : "";
}

std::wstring addressOf(const ProxyTarget& target, const std::string& scheme) {
  const bool six = target.host.find(':') != std::string::npos;
  const std::string host = six ? "[" + target.host + "]" : target.host;
  return wide(scheme + "://" + host + ":" + std::to_string(target.port) + "/");
}

WINHTTP_AUTOPROXY_OPTIONS optionsOf(const Question& question) {
  WINHTTP_AUTOPROXY_OPTIONS options{};
  if (question.script.empty()) {
    options.dwFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
    options.dwAutoDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;
  } else {
    options.dwFlags = WINHTTP_AUTOPROXY_CONFIG_URL;
    options.lpszAutoConfigUrl = question.script.c_str();
  }
  return options;
}

std::vector<Proxy> proxiesIn(const WINHTTP_PROXY_INFO& info, const ProxyTarget& target) {
  if (info.dwAccessType != WINHTTP_ACCESS_TYPE_NAMED_PROXY) return {};
  if (isExcepted(utf8(info.lpszProxyBypass), target)) return {};
  return proxiesOfList(utf8(info.lpszProxy), target);
}

Asked askAtOnce(const Question& question) {
  const Handle session = openSession(question.api, 0);
  if (!session) return {::GetLastError(), {}};
  WINHTTP_AUTOPROXY_OPTIONS options = optionsOf(question);
  WINHTTP_PROXY_INFO info{};
  if (!question.api.ask(session.get(), question.address.c_str(), &options, &info))
    return {::GetLastError(), {}};
  Asked asked{ERROR_SUCCESS, proxiesIn(info, question.target)};
  ::GlobalFree(info.lpszProxy);
  ::GlobalFree(info.lpszProxyBypass);
  return asked;
}

const char* schemeOf(INTERNET_SCHEME scheme) noexcept {
  switch (scheme) {
    case INTERNET_SCHEME_HTTP:
      return "http://";
    case INTERNET_SCHEME_HTTPS:
      return "https://";
    case INTERNET_SCHEME_SOCKS:
      return "socks://";
    default:
      return "unknown://";
  }
}

Proxy proxyOf(const WINHTTP_PROXY_RESULT_ENTRY& entry) {
  if (!entry.fProxy || entry.fBypass) return {};
  std::string host = utf8(entry.pwszProxy);
  if (host.find(':') != std::string::npos && !host.starts_with('[')) host = "[" + host + "]";
  return parseProxy(schemeOf(entry.ProxyScheme) + host + ":" + std::to_string(entry.ProxyPort));
}

std::vector<Proxy> proxiesIn(const WINHTTP_PROXY_RESULT& result) {
  std::vector<Proxy> proxies;
  for (DWORD i = 0; i < result.cEntries; ++i) proxies.push_back(proxyOf(result.pEntries[i]));
  return proxies;
}

// The answer comes on a thread of the system's.
struct ScriptAnswer {
  HANDLE told = nullptr;
  DWORD error = ERROR_SUCCESS;
};

// To wake who waits is the last that it does: the library may be unloaded soon behind that.
void CALLBACK hear(HINTERNET, DWORD_PTR context, DWORD status, LPVOID information, DWORD) {
  auto& answer = *reinterpret_cast<ScriptAnswer*>(context);
  if (status == WINHTTP_CALLBACK_STATUS_REQUEST_ERROR) {
    answer.error = static_cast<WINHTTP_ASYNC_RESULT*>(information)->dwError;
  }
  ::SetEvent(answer.told);
}

Asked resultOf(const Question& question, HINTERNET resolver) {
  WINHTTP_PROXY_RESULT result{};
  const DWORD error = question.api.result(resolver, &result);
  if (error != ERROR_SUCCESS) return {error, {}};
  Asked asked{ERROR_SUCCESS, proxiesIn(result)};
  question.api.freeResult(&result);
  return asked;
}

Asked waitFor(const Question& question, HINTERNET resolver, ScriptAnswer& answer) {
  constexpr DWORD kHeard =
      WINHTTP_CALLBACK_FLAG_REQUEST_ERROR | WINHTTP_CALLBACK_FLAG_GETPROXYFORURL_COMPLETE;
  if (question.api.setCallback(resolver, &hear, kHeard, 0) == WINHTTP_INVALID_STATUS_CALLBACK) {
    return {::GetLastError(), {}};
  }
  WINHTTP_AUTOPROXY_OPTIONS options = optionsOf(question);
  const DWORD started = question.api.startAsking(resolver, question.address.c_str(), &options,
                                                 reinterpret_cast<DWORD_PTR>(&answer));
  if (started != ERROR_IO_PENDING) return {started, {}};
  ::WaitForSingleObject(answer.told, INFINITE);
  if (answer.error != ERROR_SUCCESS) return {answer.error, {}};
  return resultOf(question, resolver);
}

// None where the system's resolver cannot be had.
std::optional<Asked> askResolver(const Question& question) {
  if (!question.api.createResolver) return std::nullopt;
  const Handle session = openSession(question.api, WINHTTP_FLAG_ASYNC);
  HINTERNET made = nullptr;
  if (!session || question.api.createResolver(session.get(), &made) != ERROR_SUCCESS) return std::nullopt;
  const Handle resolver(made, HandleCloser{question.api.close});
  ScriptAnswer answer{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  if (!answer.told) return std::nullopt;
  Asked asked = waitFor(question, resolver.get(), answer);
  ::CloseHandle(answer.told);
  return asked;
}

Asked ask(const Question& question) {
  auto asked = askResolver(question);
  return asked ? *std::move(asked) : askAtOnce(question);
}

}  // namespace

std::optional<std::vector<Proxy>> askProxyScript(const WinHttp& api, const std::string& script,
                                                 const ProxyTarget& target) {
  Question question{api, wide(script), target, addressOf(target, target.scheme)};
  Asked asked = ask(question);
  if (asked.error == ERROR_WINHTTP_UNRECOGNIZED_SCHEME) {
    // The system's resolvers know the schemes of the web alone.
    question.address = addressOf(target, "http");
    asked = ask(question);
  }
  if (asked.error != ERROR_SUCCESS) return std::nullopt;
  return std::move(asked.proxies);
}

}  // namespace platform
