// SPDX-License-Identifier: MIT
// A call within an operation that the host gets: a hook, a callback, or an operation in another slot of the
// client, which calls hooks and dispatches messages. The host may free the client in it.
#pragma once

#include <type_traits>

#include "framework/platform/stop_token.h"

// Calls `call` and returns its result. Leaves by OperationStopped when the client is gone behind it, or the
// calling thread has to stop.
template <typename Call>
auto HostCall(Call&& call) {
  if constexpr (std::is_void_v<decltype(call())>) {
    call();
    platform::throwIfStopped();
  } else {
    const auto result = call();
    platform::throwIfStopped();
    return result;
  }
}
