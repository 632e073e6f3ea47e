// SPDX-License-Identifier: MIT
// The system's judgement over a server's certificate and those behind it.
#pragma once

#include "framework/platform/tls.h"
#include "framework/posix/openssl_api.h"

namespace platform {

// Has the certificates of its servers judged, lists of revoked ones in the system's store included, without
// a word to the handshakes: they go on with whoever there is.
void judgeChains(const openssl::Api& api, openssl::Context* context) noexcept;

// What a verdict of OpenSSL means.
TlsTrust trustOf(long verdict) noexcept;

}  // namespace platform
