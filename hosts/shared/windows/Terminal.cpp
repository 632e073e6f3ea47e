// SPDX-License-Identifier: MIT
#include "hosts/shared/Terminal.h"

#include <fcntl.h>
#include <io.h>

#include <cstdlib>

#include "hosts/shared/Interrupt.h"
#include "hosts/shared/windows/CodePages.h"
#include "hosts/shared/windows/System.h"

namespace hosts {
namespace {

class Console {
 public:
  explicit Console(const wchar_t* name)
      : m_handle(CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                             OPEN_EXISTING, 0, nullptr)) {
    m_isOpen = GetConsoleMode(m_handle, &m_before) != 0;
  }
  ~Console() {
    if (m_isOpen) SetConsoleMode(m_handle, m_before);
    if (m_handle != INVALID_HANDLE_VALUE) CloseHandle(m_handle);
  }
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  [[nodiscard]] bool isOpen() const { return m_isOpen; }
  [[nodiscard]] HANDLE handle() const { return m_handle; }
  void hideWhatIsTyped() const {
    SetConsoleMode(m_handle, m_before & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
  }

 private:
  HANDLE m_handle;
  bool m_isOpen;
  DWORD m_before = 0;
};

HANDLE handleOf(std::FILE* stream) { return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))); }

void write(const Console& console, const std::string& text) {
  const std::wstring shown = wideWithMarks(text, Encoding::codePage);
  WriteConsoleW(console.handle(), shown.data(), static_cast<DWORD>(shown.size()), nullptr, nullptr);
}

}  // namespace

std::optional<std::string> ask(const std::string& question, Echo echo) {
  const Console in(L"CONIN$");
  const Console out(L"CONOUT$");
  if (!in.isOpen() || !out.isOpen()) return {};
  if (echo == Echo::off) in.hideWhatIsTyped();
  write(out, question);
  std::wstring line(2048, L'\0');
  DWORD size = 0;
  ReadConsoleW(in.handle(), line.data(), static_cast<DWORD>(line.size()), &size, nullptr);
  if (echo == Echo::off) write(out, "\r\n");
  line.resize(size);
  line.resize(line.find_last_not_of(L"\r\n") + 1);
  // The library wants texts in the code page of the process.
  return isInterrupted() ? std::nullopt : std::optional(narrowWithMarks(line, Encoding::codePage));
}

// NUL is a terminal to _isatty().
bool isTerminal(std::FILE* stream) {
  DWORD mode = 0;
  return GetConsoleMode(handleOf(stream), &mode) != 0;
}

std::size_t columnsOfErrorOutput() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info)) return 0;
  const int columns = info.srWindow.Right - info.srWindow.Left + 1;
  return columns > 0 ? static_cast<std::size_t>(columns) : 80;
}

// Consoles before Windows 10 have none.
bool takesColours(std::FILE* stream) {
  const char* const unwanted = std::getenv("NO_COLOR");
  if (unwanted != nullptr && *unwanted != '\0') return false;
  HANDLE const console = handleOf(stream);
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) && SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

void prepareStreams() {
  for (std::FILE* const stream : {stdin, stdout}) _setmode(_fileno(stream), _O_BINARY);
  SetConsoleOutputCP(GetACP());
}

}  // namespace hosts
