// SPDX-License-Identifier: MIT
// The system's judgement over a server's certificate and those behind it.
#pragma once

#include "framework/platform/tls.h"
#include "framework/windows/system_tls.h"

namespace platform {

// The name is not judged. `certificate` comes from a TLS context, with the store of what the server has sent.
TlsTrust judgeChain(const SystemTls& system, PCCERT_CONTEXT certificate);

}  // namespace platform
