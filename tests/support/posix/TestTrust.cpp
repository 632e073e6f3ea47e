// SPDX-License-Identifier: MIT
#include "tests/support/TestTrust.h"

#include <cstdlib>
#include <string>

namespace testing_support {

void trustTestAuthority() {
  const char* const folder = std::getenv("QX_FIXTURE_DIR");
  // With lists of what was revoked.
  const std::string trusted = std::string(folder ? folder : "") + "/certificates/trusted.pem";
  ::setenv("SSL_CERT_FILE", trusted.c_str(), 1);
}

}  // namespace testing_support
