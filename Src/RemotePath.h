// SPDX-License-Identifier: MIT
// What may become of a host's text on its way to a server.
#pragma once

#include "framework/platform/last_error.h"
#include "support/Paths.h"

// False, with the last error 87, for a path that is too long for the client or has a control character. Null
// and "" pass: each operation has its own answer to those.
[[nodiscard]] bool MayGoToServer(const char* name) noexcept;

// False, with the last error 87, when one of the paths is null or "".
[[nodiscard]] bool BothGiven(const char* first, const char* second) noexcept;

// Copies `name` and turns it into an FTP path. False, with the last error 87, for null, "", an over-long path
// or one with a control character.
template <std::size_t Capacity>
[[nodiscard]] bool MakeFtpPath(const char* name, BoundedText<Capacity>& path) noexcept {
  if (MayGoToServer(name) && path.assign(name)) ToFtpPath(path.data());
  if (path.empty()) platform::setLastError(platform::kErrorInvalidParameter);
  return !path.empty();
}
