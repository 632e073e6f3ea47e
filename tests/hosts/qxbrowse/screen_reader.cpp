// SPDX-License-Identifier: MIT
// screen_reader PORT PROGRAM [ARGUMENT...]: starts the program beside itself and tells a test, which listens
// at the port, what its windows show: for each line that comes, one line of JSON with all of them. So the
// test can press keys outside and see inside. Ends with the program, with its exit code.
#include <winsock2.h>
// Only now:
#include <windows.h>
// Only now:
#include <commctrl.h>

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

using nlohmann::json;

constexpr UINT kPatienceMs = 5000;
constexpr int kMostRows = 100;
constexpr std::size_t kLongestText = 512;
constexpr std::size_t kRemoteBytes = 4096;

std::string narrow(const std::wstring& text) {
  std::string bytes(text.size() * 3, '\0');
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                                       static_cast<int>(bytes.size()), nullptr, nullptr);
  bytes.resize(static_cast<std::size_t>(size));
  return bytes;
}

// 0 also where the program does not answer.
LRESULT ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
  DWORD_PTR answer = 0;
  SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kPatienceMs, &answer);
  return static_cast<LRESULT>(answer);
}

std::wstring textOf(HWND window) {
  std::wstring text(kLongestText, L'\0');
  text.resize(
      static_cast<std::size_t>(ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
  return text;
}

std::wstring classOf(HWND window) {
  wchar_t name[64] = L"";
  GetClassNameW(window, name, 64);
  return name;
}

// Memory of the program, where it can put what a message asks for.
class Remote {
 public:
  explicit Remote(HANDLE process)
      : m_process(process),
        m_memory(
            static_cast<char*>(VirtualAllocEx(process, nullptr, kRemoteBytes, MEM_COMMIT, PAGE_READWRITE))) {}
  ~Remote() { VirtualFreeEx(m_process, m_memory, 0, MEM_RELEASE); }
  Remote(const Remote&) = delete;
  Remote& operator=(const Remote&) = delete;

  [[nodiscard]] std::string cell(HWND list, int row, int column) const {
    LVITEMW item{};
    item.iSubItem = column;
    item.cchTextMax = kLongestText;
    item.pszText = reinterpret_cast<wchar_t*>(textPlace());
    WriteProcessMemory(m_process, m_memory, &item, sizeof item, nullptr);
    return read(ask(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(m_memory)));
  }

  [[nodiscard]] std::string part(HWND status, int number) const {
    const auto length = LOWORD(ask(status, SB_GETTEXTLENGTHW, static_cast<WPARAM>(number)));
    if (length >= kLongestText) return "too long";
    ask(status, SB_GETTEXTW, static_cast<WPARAM>(number), reinterpret_cast<LPARAM>(textPlace()));
    return read(length);
  }

 private:
  [[nodiscard]] char* textPlace() const { return m_memory + kRemoteBytes / 2; }

  [[nodiscard]] std::string read(LRESULT length) const {
    std::wstring text(static_cast<std::size_t>(length), L'\0');
    ReadProcessMemory(m_process, textPlace(), text.data(), text.size() * sizeof(wchar_t), nullptr);
    return narrow(text);
  }

  HANDLE m_process;
  char* m_memory;
};

json rowsOf(HWND list, const Remote& remote) {
  const auto header = reinterpret_cast<HWND>(ask(list, LVM_GETHEADER));
  const int columns = static_cast<int>(ask(header, HDM_GETITEMCOUNT));
  const int count = static_cast<int>(ask(list, LVM_GETITEMCOUNT));
  json rows = json::array();
  for (int row = 0; row < std::min(count, kMostRows); ++row) {
    json cells = json::array();
    for (int column = 0; column < columns; ++column) cells.push_back(remote.cell(list, row, column));
    rows.push_back(cells);
  }
  return rows;
}

json selectedOf(HWND list) {
  json selected = json::array();
  auto row = static_cast<WPARAM>(-1);
  while (selected.size() < kMostRows) {
    row = static_cast<WPARAM>(ask(list, LVM_GETNEXTITEM, row, LVNI_SELECTED));
    if (static_cast<int>(row) < 0) break;
    selected.push_back(row);
  }
  return selected;
}

json partsOf(HWND status, const Remote& remote) {
  json parts = json::array();
  const int count = static_cast<int>(ask(status, SB_GETPARTS));
  for (int number = 0; number < count; ++number) parts.push_back(remote.part(status, number));
  return parts;
}

HWND focusOf(HWND window) {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
  return info.hwndFocus;
}

json shown(HWND window, const Remote& remote) {
  const std::wstring type = classOf(window);
  json all = {{"class", narrow(type)}, {"text", narrow(textOf(window))}, {"id", GetDlgCtrlID(window)}};
  all["enabled"] = IsWindowEnabled(window) != 0;
  all["focused"] = focusOf(window) == window;
  if (type == WC_LISTVIEWW) {
    all["rows"] = rowsOf(window, remote);
    all["selected"] = selectedOf(window);
  }
  if (type == STATUSCLASSNAMEW) all["parts"] = partsOf(window, remote);
  return all;
}

struct Look {
  DWORD process;
  const Remote& remote;
  json windows = json::array();
};

BOOL CALLBACK lookAtChild(HWND window, LPARAM parameter) {
  auto& look = *reinterpret_cast<Look*>(parameter);
  if (IsWindowVisible(window)) look.windows.back()["children"].push_back(shown(window, look.remote));
  return TRUE;
}

BOOL CALLBACK lookAtWindow(HWND window, LPARAM parameter) {
  auto& look = *reinterpret_cast<Look*>(parameter);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != look.process || !IsWindowVisible(window)) return TRUE;
  look.windows.push_back(shown(window, look.remote));
  look.windows.back()["children"] = json::array();
  EnumChildWindows(window, &lookAtChild, parameter);
  return TRUE;
}

json lookAt(const PROCESS_INFORMATION& program) {
  const Remote remote(program.hProcess);
  Look look{program.dwProcessId, remote};
  EnumWindows(&lookAtWindow, reinterpret_cast<LPARAM>(&look));
  return {{"windows", look.windows},
          {"user", GetGuiResources(program.hProcess, GR_USEROBJECTS)},
          {"gdi", GetGuiResources(program.hProcess, GR_GDIOBJECTS)}};
}

// What comes behind the port: the program and its arguments.
wchar_t* programCommand() {
  wchar_t* rest = GetCommandLineW();
  for (int words = 0; words < 2; ++words) {
    const bool isQuoted = *rest == L'"';
    rest = std::wcschr(rest + isQuoted, isQuoted ? L'"' : L' ');
    if (rest == nullptr) throw std::runtime_error("screen_reader PORT PROGRAM [ARGUMENT...]");
    while (*rest == L'"' || *rest == L' ') ++rest;
    if (words == 0 && *rest == L'\0') throw std::runtime_error("no port");
  }
  return rest;
}

int portFrom(std::string_view text) {
  int port = 0;
  std::from_chars(text.data(), text.data() + text.size(), port);
  return port;
}

SOCKET connectTo(int port) {
  WSADATA data{};
  WSAStartup(MAKEWORD(2, 2), &data);
  const SOCKET line = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<u_short>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(line, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("nobody listens");
  }
  return line;
}

void sendLine(SOCKET line, const std::string& text) {
  const std::string whole = text + "\n";
  for (std::size_t sent = 0; sent < whole.size();) {
    const int more = send(line, whole.data() + sent, static_cast<int>(whole.size() - sent), 0);
    if (more <= 0) throw std::runtime_error("the test has gone");
    sent += static_cast<std::size_t>(more);
  }
}

bool hasEnded(const PROCESS_INFORMATION& program) {
  return WaitForSingleObject(program.hProcess, 0) == WAIT_OBJECT_0;
}

int answer(SOCKET line, const PROCESS_INFORMATION& program) {
  for (char question = 0; recv(line, &question, 1, 0) == 1;) {
    if (question != '\n') continue;
    DWORD code = 0;
    const bool isOver = hasEnded(program);
    if (isOver) GetExitCodeProcess(program.hProcess, &code);
    sendLine(line, (isOver ? json{{"ended", code}} : lookAt(program))
                       .dump(-1, ' ', false, json::error_handler_t::replace));
    if (isOver) return static_cast<int>(code);
  }
  TerminateProcess(program.hProcess, 1);  // the test has gone
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const SOCKET line = connectTo(portFrom(argv[1]));
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION program{};
  if (!CreateProcessW(nullptr, programCommand(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                      &program)) {
    return 3;
  }
  return answer(line, program);
}
