// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/lists/Formats.h"

#include <array>
#include <cwchar>

#include "hosts/qxbrowse/ui/System.h"
#include "hosts/qxbrowse/ui/Texts.h"

namespace browse {
namespace {

constexpr std::uint64_t kStep = 1024;
constexpr Text kUnits[] = {Text::sizeBytes, Text::sizeKilo, Text::sizeMega, Text::sizeGiga, Text::sizeTera};

// Hundredths of a unit in three digits; the rest is cut.
std::wstring threeDigits(std::uint64_t hundredths) {
  std::wstring whole = std::to_wstring(hundredths / 100);
  const std::wstring both = std::to_wstring(hundredths % 100 + 100).substr(1);
  if (whole.size() >= 3) return whole;
  return whole + L'.' + both.substr(0, 3 - whole.size());
}

constexpr std::int64_t kTicks = 10'000'000;       // of 100 ns in a second
constexpr std::int64_t kTo1970 = 11'644'473'600;  // seconds since 1601
constexpr std::size_t kDateLength = 10;

}  // namespace

std::wstring sizeText(std::uint64_t bytes) {
  if (bytes < kStep) return text(Text::sizeBytes, {std::to_wstring(bytes)});
  std::uint64_t unit = kStep;
  std::size_t name = 1;
  for (; bytes / unit >= kStep && name + 1 < std::size(kUnits); ++name) unit *= kStep;
  const std::uint64_t hundredths = bytes / unit * 100 + bytes % unit * 100 / unit;
  return text(kUnits[name], {threeDigits(hundredths)});
}

std::wstring exactText(std::uint64_t number) {
  std::wstring digits = std::to_wstring(number);
  for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, 1, L',');
  return digits;
}

std::wstring timeText(std::int64_t time) {
  const auto bits = static_cast<std::uint64_t>(time);
  const FILETIME file{static_cast<DWORD>(bits), static_cast<DWORD>(bits >> 32)};
  SYSTEMTIME parts{};
  if (time <= 0 || !FileTimeToSystemTime(&file, &parts)) return {};
  std::array<wchar_t, 32> buffer{};
  std::swprintf(buffer.data(), buffer.size(), L"%04u-%02u-%02u %02u:%02u", parts.wYear, parts.wMonth,
                parts.wDay, parts.wHour, parts.wMinute);
  return buffer.data();
}

std::wstring momentText(const hosts::Moment& moment) {
  const auto ticks = static_cast<std::uint64_t>((moment.at.time_since_epoch().count() + kTo1970) * kTicks);
  const FILETIME universal{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
  SYSTEMTIME parts{}, here{};
  FILETIME local{};
  const bool isTime = FileTimeToSystemTime(&universal, &parts) &&
                      SystemTimeToTzSpecificLocalTime(nullptr, &parts, &here) &&
                      SystemTimeToFileTime(&here, &local);
  if (!isTime) return {};
  const std::wstring all =
      timeText(static_cast<std::int64_t>(std::uint64_t{local.dwHighDateTime} << 32 | local.dwLowDateTime));
  return moment.precision == hosts::Precision::day ? all.substr(0, kDateLength) : all;
}

}  // namespace browse
