// SPDX-License-Identifier: MIT
// Passwords that are remembered: protected by the system, for this user on this machine alone.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace browse {

// The form that a file can hold, in letters and digits. Throws std::system_error where the system refuses.
std::string protect(std::string_view password);

// None of what another user, another machine or somebody's editor has made: the password is asked for then.
std::optional<std::string> unprotect(std::string_view text);

// Overwrites it.
void wipe(std::string& secret) noexcept;

}  // namespace browse
