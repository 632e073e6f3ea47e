// SPDX-License-Identifier: MIT
#include "support/TimeStamp.h"

#include <cstdio>

char* GetTimeStamp(const platform::CalendarTime& time, char* buffer) noexcept {
  std::snprintf(buffer, kTimeStampCapacity, "%02d.%02d.%04d %02d:%02d:%02d", time.day, time.month, time.year,
                time.hour, time.minute, time.second);
  return buffer;
}

char* GetLocalTimeStamp(char* buffer) noexcept { return GetTimeStamp(platform::localTimeNow(), buffer); }
