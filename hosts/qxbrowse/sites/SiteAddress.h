// SPDX-License-Identifier: MIT
// Addresses as people paste them, in place of a site's fields.
#pragma once

#include <optional>
#include <string_view>

#include "hosts/qxbrowse/sites/ConnectDialog.h"

namespace browse {

// None of what is no address, or of one with an option that no site has: verify=no would let anybody be the
// server, and is not what a user of this program should paste.
std::optional<Destination> destinationFrom(std::string_view text);

}  // namespace browse
