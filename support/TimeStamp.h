// SPDX-License-Identifier: MIT
// Times as text: "dd.mm.yyyy hh:mm:ss".
#pragma once

#include <cstddef>

#include "framework/platform/clock.h"

inline constexpr std::size_t kTimeStampCapacity = 32;  // with the terminator

// Both return `buffer`, which holds kTimeStampCapacity characters.
char* GetTimeStamp(const platform::CalendarTime& time, char* buffer) noexcept;
char* GetLocalTimeStamp(char* buffer) noexcept;
