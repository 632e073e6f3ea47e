// SPDX-License-Identifier: MIT
// The one-byte flags that two threads share have a fixed place in records and objects that hosts read, so
// they stay plain bytes; every access from the library goes through here.
#pragma once

#include <atomic>

#include "QXTypes.h"

[[nodiscard]] inline bool IsSet(const QXBool& flag) noexcept {
  return std::atomic_ref<QXBool>(const_cast<QXBool&>(flag)).load(std::memory_order_acquire) != 0;
}

inline void SetFlag(QXBool& flag, bool value) noexcept {
  std::atomic_ref<QXBool>(flag).store(value ? 1 : 0, std::memory_order_release);
}
