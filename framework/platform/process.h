// SPDX-License-Identifier: MIT
// Contract: what the framework's start-up needs of the process it is loaded into.
#pragma once

namespace platform {

// Handle of the process's main program (not of this library). Never null.
void* processModule() noexcept;

// Initialises the standard common-control classes; nothing to do on POSIX.
void initCommonControls() noexcept;

// Starts the sockets layer for this library. False with the last error set when the system refuses.
// May be called repeatedly and from several threads; it is started once and stays up while the library is
// loaded.
[[nodiscard]] bool startSockets() noexcept;

}  // namespace platform
