// SPDX-License-Identifier: MIT
#include "framework/windows/winhttp_api.h"

#include "framework/platform/last_error.h"
#include "framework/windows/system_library.h"

namespace platform {

namespace {

bool load(WinHttp& api) {
  const LastErrorKeeper keeper;
  const HMODULE library = loadSystemLibrary(L"winhttp.dll");
  if (!library) return false;
  const bool later = findFunction(library, "WinHttpSetStatusCallback", api.setCallback) &&
                     findFunction(library, "WinHttpGetProxyForUrlEx", api.startAsking) &&
                     findFunction(library, "WinHttpGetProxyResult", api.result) &&
                     findFunction(library, "WinHttpFreeProxyResult", api.freeResult);
  if (later) findFunction(library, "WinHttpCreateProxyResolver", api.createResolver);
  return findFunction(library, "WinHttpOpen", api.open) &&
         findFunction(library, "WinHttpCloseHandle", api.close) &&
         findFunction(library, "WinHttpGetIEProxyConfigForCurrentUser", api.settings) &&
         findFunction(library, "WinHttpGetProxyForUrl", api.ask);
}

}  // namespace

const WinHttp* systemWinHttp() {
  static WinHttp api;
  static const bool loaded = load(api);
  return loaded ? &api : nullptr;
}

}  // namespace platform
