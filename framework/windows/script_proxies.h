// SPDX-License-Identifier: MIT
// What an automatic configuration script says, through the system's own resolver.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "framework/platform/proxies.h"
#include "framework/windows/winhttp_api.h"

namespace platform {

// `script` is an address; "": the system looks for one in the network. None where there is no script or where
// it cannot be run; no entry is direct. May take as long as the system's own limits let it. The resolver of
// Windows 8 tells all that the script says, in its order. The one before it knows HTTP proxies alone, and
// none behind the first "DIRECT". Neither gets the user's credentials: who answers to a name in the network
// is anybody's guess.
std::optional<std::vector<Proxy>> askProxyScript(const WinHttp& api, const std::string& script,
                                                 const ProxyTarget& target);

}  // namespace platform
