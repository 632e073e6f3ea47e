// SPDX-License-Identifier: MIT
// Makes the authority of the fixture's certificates one that this system trusts, for this program. To be
// called when a server with such a certificate was started, before the first connection to one.
#pragma once

namespace testing_support {

void trustTestAuthority();

}  // namespace testing_support
