// SPDX-License-Identifier: MIT
// Keeps the caller's windows alive: empties its message queue without waiting.
#pragma once

#include <cstdint>

#include "framework/platform/message_queue.h"
#include "framework/platform/worker_thread.h"

// Dispatches every waiting message: with a live `window` its messages within the range (0, 0 = all), else all
// of the calling thread, whatever the range. Never waits. Always true. A message handler may throw through
// here.
bool PumpMessages(platform::WindowHandle window, std::uint32_t firstMessage, std::uint32_t lastMessage);

// Dispatches messages until `thread` has ended or *pKeepWaiting is 0; without a thread until *pKeepWaiting is
// 0. False when pKeepWaiting is null.
bool WaitWithMessages(const platform::WorkerThread* thread, const std::uint8_t* pKeepWaiting);
