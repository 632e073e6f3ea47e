// SPDX-License-Identifier: MIT
// The question that decides about a transfer whose final reply was lost.
#pragma once

#include <cstdint>
#include <string_view>

#include "framework/internet/ftp/FtpControl.h"

namespace internet {

// Asks over a fresh connection, silently, whether the remote file has `size` bytes; `path` as it was given to
// `control`. False also when there is no answer to that. Leaves by OperationStopped alone.
[[nodiscard]] bool remoteFileHasSize(const FtpControl& control, std::string_view path, std::uint64_t size);

}  // namespace internet
