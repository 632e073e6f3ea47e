// SPDX-License-Identifier: MIT
#include "tests/support/TestTrust.h"

#include <cstdlib>
#include <string>

namespace testing_support {

void trustTestAuthority() {
  const char* const folder = std::getenv("QX_FIXTURE_DIR");
  const std::string authority = std::string(folder ? folder : "") + "/certificates/authority.pem";
  ::setenv("SSL_CERT_FILE", authority.c_str(), 1);
}

}  // namespace testing_support
