// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace internet::tls_testing {

// Lets this system have the list of what the fixture's authority has revoked, as if it came from `url`. Where
// lists belong to what is trusted (Linux) it has it already.
void haveListOfRevoked(const std::string& url);

}  // namespace internet::tls_testing
