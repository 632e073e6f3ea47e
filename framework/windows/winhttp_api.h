// SPDX-License-Identifier: MIT
// The system's functions for proxies (winhttp). Loaded when they are first asked for, and not linked: under
// Wine that takes as long as many a whole program.
#pragma once

#include "framework/windows/windows_api.h"
// Behind the wrapper.
#include <winhttp.h>

namespace platform {

struct WinHttp {
  decltype(&::WinHttpOpen) open = nullptr;
  decltype(&::WinHttpCloseHandle) close = nullptr;
  decltype(&::WinHttpGetIEProxyConfigForCurrentUser) settings = nullptr;
  decltype(&::WinHttpGetProxyForUrl) ask = nullptr;
  // Since Windows 8; all of them, or the first one null.
  decltype(&::WinHttpCreateProxyResolver) createResolver = nullptr;
  decltype(&::WinHttpSetStatusCallback) setCallback = nullptr;
  decltype(&::WinHttpGetProxyForUrlEx) startAsking = nullptr;
  decltype(&::WinHttpGetProxyResult) result = nullptr;
  decltype(&::WinHttpFreeProxyResult) freeResult = nullptr;
};

// Null where the system lacks one of those that Windows 7 has.
const WinHttp* systemWinHttp();

}  // namespace platform
