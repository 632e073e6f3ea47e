// SPDX-License-Identifier: MIT
// Contract: a message that the user must acknowledge.
#pragma once

namespace platform {

// Shows `text` under `caption` in a topmost message box with an OK button and no owner, and waits for the
// user. On POSIX it is a line "caption: text" on standard error.
void showModalMessage(const char* text, const char* caption) noexcept;

}  // namespace platform
