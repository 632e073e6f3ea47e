// SPDX-License-Identifier: MIT
// Contract: the calling thread's message queue. None of these functions waits.
// On Windows it is the Win32 queue. On POSIX it is the thread's GLib main context where the host has GLib in
// its process (looked up at run time; nothing is linked): the thread-default context if one is pushed, else
// the default context when this thread owns it or is the process's first thread. Without GLib there are no
// messages.
#pragma once

#include <cstdint>

namespace platform {

// A window of the host; an opaque HWND on Windows, never a live window on POSIX.
using WindowHandle = void*;

[[nodiscard]] bool isWindow(WindowHandle window) noexcept;

// True when a message waits; it is not removed.
[[nodiscard]] bool messageWaiting() noexcept;

// Takes the waiting message and dispatches it, a quit message included. Call only after messageWaiting().
// A message handler may throw through here.
void takeAndDispatchMessage();

// Removes and dispatches one message of `window` (null = any of this thread) within the range (0, 0 = all).
// False when there was none. The sources of GLib have neither windows nor numbers: any of them will do there.
bool dispatchOneMessage(WindowHandle window, std::uint32_t firstMessage, std::uint32_t lastMessage);

}  // namespace platform
