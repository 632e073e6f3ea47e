// SPDX-License-Identifier: MIT
#include "support/TimeStamp.h"

#include "support/Diagnostics.h"

char* GetTimeStamp(const platform::CalendarTime& time, char* buffer) noexcept {
  TraceMessage(buffer, kTimeStampCapacity, "%02d.%02d.%04d %02d:%02d:%02d", time.day, time.month, time.year,
               time.hour, time.minute, time.second);
  return buffer;
}

char* GetLocalTimeStamp(char* buffer) noexcept { return GetTimeStamp(platform::localTimeNow(), buffer); }
