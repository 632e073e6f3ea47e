// SPDX-License-Identifier: MIT
// Sizes and times as people read them.
#pragma once

#include <cstdint>
#include <string>

#include "hosts/shared/Moments.h"

namespace browse {

// 0 -> L"0 bytes", 1023 -> L"1023 bytes", 1536 -> L"1.50 KB", 10240 -> L"10.0 KB", 123456789 -> L"118 MB".
// Three digits, never rounded up to what the file has not got.
std::wstring sizeText(std::uint64_t bytes);

// With commas: 1234567 -> L"1,234,567".
std::wstring exactText(std::uint64_t number);

// L"2026-11-22 21:37", and nothing for 0 and for what is no time.
std::wstring timeText(std::int64_t time);
// Of this machine's zone, and no more of it than is known.
std::wstring momentText(const hosts::Moment& moment);

}  // namespace browse
