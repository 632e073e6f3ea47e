// SPDX-License-Identifier: MIT
// Who wants to know how far an upload is.
#pragma once

#include <cstdint>
#include <functional>

namespace internet {

// Where the next byte to be sent belongs in the file, and the file's size. Called by the thread that sends,
// once before the first byte of each attempt, and then each time that the system has taken bytes, which may
// be under way still. Must not throw.
using UploadWatch = std::function<void(std::uint64_t position, std::uint64_t size)>;

}  // namespace internet
