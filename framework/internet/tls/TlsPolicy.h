// SPDX-License-Identifier: MIT
// How a connection is to be encrypted, as the caller has asked for it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace internet {

enum class Encryption {
  none,
  onDemand,  // plain until the server has taken AUTH TLS; never without
  fromStart
};

struct TlsPolicy {
  Encryption encryption = Encryption::none;
  // SHA-256 of the certificate that the server must show, in place of every other check.
  std::optional<std::array<std::uint8_t, 32>> fingerprint;
  bool verifies = true;  // false: any certificate will do
  bool onlyTls12 = false;
};

}  // namespace internet
