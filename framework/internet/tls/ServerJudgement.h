// SPDX-License-Identifier: MIT
// Whether a server that has shown its certificate is the one that was asked for.
#pragma once

#include <optional>
#include <string>

#include "framework/internet/net/Failure.h"
#include "framework/internet/tls/TlsPolicy.h"
#include "framework/platform/tls.h"

namespace internet {

// Why it is not: 12037 (date), 12038 (name), 12045 (authority), 12169 (another certificate than the pinned
// one, or an unusable one), 12170 (revoked), with a text that tells what the certificate says of itself. The
// gravest reason alone. None: it is, as far as `policy` wants to know.
std::optional<Failure> faultOf(const platform::TlsPeer& peer, const std::string& server,
                               const TlsPolicy& policy);

}  // namespace internet
