// SPDX-License-Identifier: MIT
#include "hosts/shared/Screen.h"

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <array>
#include <cstdio>

namespace hosts {
namespace {

bool isConsole(DWORD stream) {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(stream), &mode) != 0;
}

}  // namespace

std::size_t columnsOfErrorOutput() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info)) return 0;
  const int columns = info.srWindow.Right - info.srWindow.Left + 1;
  return columns > 0 ? static_cast<std::size_t>(columns) : 80;
}

bool canAsk() { return isConsole(STD_INPUT_HANDLE) && isConsole(STD_ERROR_HANDLE); }

std::optional<std::string> ask(const std::string& question) {
  std::fprintf(stderr, "%s", question.c_str());
  std::fflush(stderr);
  std::array<char, 512> text{};
  DWORD count = 0;
  HANDLE const input = GetStdHandle(STD_INPUT_HANDLE);
  if (!ReadConsoleA(input, text.data(), static_cast<DWORD>(text.size()), &count, nullptr) || count == 0)
    return {};
  std::string line(text.data(), count);
  line.erase(line.find_last_not_of("\r\n") + 1);
  return line;
}

}  // namespace hosts
