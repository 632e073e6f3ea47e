// SPDX-License-Identifier: MIT
#include "hosts/shared/Terminal.h"

#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdlib>

#include "hosts/shared/Interrupt.h"

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

std::wstring wide(const std::string& text) {
  std::wstring result(text.size(), L'\0');
  const int size = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), result.data(),
                                       static_cast<int>(result.size()));
  result.resize(static_cast<std::size_t>(size));
  return result;
}

// The library wants texts in the code page of the process.
std::string narrow(const std::wstring& text) {
  std::string result(text.size() * 4, '\0');
  const int size = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), result.data(),
                                       static_cast<int>(result.size()), nullptr, nullptr);
  result.resize(static_cast<std::size_t>(size));
  return result;
}

void write(const Console& console, const std::string& text) {
  const std::wstring shown = wide(text);
  WriteConsoleW(console.handle(), shown.data(), static_cast<DWORD>(shown.size()), nullptr, nullptr);
}

}  // namespace

std::optional<std::string> askSecret(const std::string& question) {
  const Console in(L"CONIN$");
  const Console out(L"CONOUT$");
  if (!in.isOpen() || !out.isOpen()) return {};
  in.hideWhatIsTyped();
  write(out, question);
  std::wstring line(2048, L'\0');
  DWORD size = 0;
  ReadConsoleW(in.handle(), line.data(), static_cast<DWORD>(line.size()), &size, nullptr);
  write(out, "\r\n");
  line.resize(size);
  line.resize(line.find_last_not_of(L"\r\n") + 1);
  return isInterrupted() ? std::nullopt : std::optional(narrow(line));
}

bool isTerminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

// Consoles before Windows 10 have none.
bool takesColours(std::FILE* stream) {
  const char* const unwanted = std::getenv("NO_COLOR");
  if (unwanted != nullptr && *unwanted != '\0') return false;
  auto* const console = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) && SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

void prepareStreams() {
  for (std::FILE* const stream : {stdin, stdout}) _setmode(_fileno(stream), _O_BINARY);
  SetConsoleOutputCP(GetACP());
}

}  // namespace hosts
