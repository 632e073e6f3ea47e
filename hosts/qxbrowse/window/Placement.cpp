// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/window/Placement.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <span>
#include <string>

namespace browse {
namespace {

constexpr const wchar_t* kWindow = L"window";
constexpr const wchar_t* kPanes[] = {L"local", L"server"};
constexpr const wchar_t* kQueue = L"queue";

using Keys = std::span<const wchar_t* const>;
constexpr std::array<const wchar_t*, kColumns> kWidths = {L"name", L"size", L"type", L"time"};
constexpr std::array<const wchar_t*, kQueueColumns> kQueueWidths = {
    L"name", L"direction", L"size", L"progress", L"rate", L"left", L"state"};
constexpr int kShares = 1000;
constexpr int kWidest = 5000;       // column
constexpr int kFarthest = 100'000;  // pixels from the first screen's corner
constexpr int kLeast = 100;         // pixels that a window of any use has in each direction

struct Edge {
  const wchar_t* key;
  LONG RECT::*value;
};

constexpr std::array<Edge, 4> kEdges = {{
    {L"left", &RECT::left},
    {L"top", &RECT::top},
    {L"right", &RECT::right},
    {L"bottom", &RECT::bottom},
}};

// Keeps in mind whether there was a value that is none.
class Reader {
 public:
  explicit Reader(const std::filesystem::path& file) : m_file(file) {
    std::error_code error;
    const bool hasContent = std::filesystem::file_size(file, error) > 0 && !error;
    wchar_t some[4] = L"";
    m_isBroken = hasContent && GetPrivateProfileSectionW(kWindow, some, std::size(some), file.c_str()) == 0;
  }

  int number(const wchar_t* section, const wchar_t* key, int usual, int least, int most) {
    std::array<wchar_t, 32> text{};
    const DWORD length =
        GetPrivateProfileStringW(section, key, L"", text.data(), text.size(), m_file.c_str());
    if (length == 0) return usual;
    wchar_t* end = nullptr;
    const long value = std::wcstol(text.data(), &end, 10);
    if (*end == L'\0' && value >= least && value <= most) return static_cast<int>(value);
    m_isBroken = true;
    return usual;
  }
  double share(const wchar_t* key, double usual) {
    const int share = number(kWindow, key, -1, 0, kShares);
    return share < 0 ? usual : static_cast<double>(share) / kShares;
  }
  void widths(const wchar_t* section, Keys keys, std::span<int> widths) {
    for (std::size_t i = 0; i < keys.size(); ++i) widths[i] = number(section, keys[i], 0, 0, kWidest);
  }
  PaneLook look(const wchar_t* pane) {
    PaneLook look;
    widths(pane, kWidths, look.widths);
    look.sorting.column = Column{number(pane, L"sortedBy", 0, 0, kColumns - 1)};
    look.sorting.isDescending = number(pane, L"descending", 0, 0, 1) != 0;
    return look;
  }
  [[nodiscard]] bool isBroken() const { return m_isBroken; }

 private:
  const std::filesystem::path& m_file;
  bool m_isBroken = false;
};

void write(const std::filesystem::path& file, const wchar_t* section, const wchar_t* key, int value) {
  WritePrivateProfileStringW(section, key, std::to_wstring(value).c_str(), file.c_str());
}

void writeWidths(const std::filesystem::path& file, const wchar_t* section, Keys keys,
                 std::span<const int> widths) {
  for (std::size_t i = 0; i < keys.size(); ++i) write(file, section, keys[i], widths[i]);
}

void writeLook(const std::filesystem::path& file, const wchar_t* pane, const PaneLook& look) {
  writeWidths(file, pane, kWidths, look.widths);
  write(file, pane, L"sortedBy", static_cast<int>(look.sorting.column));
  write(file, pane, L"descending", look.sorting.isDescending ? 1 : 0);
}

// A window's place is told from the corner of the part that the taskbar leaves, so only its size counts here.
RECT nearestScreen(const RECT& window) {
  MONITORINFO info{};
  info.cbSize = sizeof info;
  GetMonitorInfoW(MonitorFromRect(&window, MONITOR_DEFAULTTONEAREST), &info);
  const RECT& whole = info.rcMonitor;
  const RECT& work = info.rcWork;
  return {whole.left, whole.top, whole.left + work.right - work.left, whole.top + work.bottom - work.top};
}

bool isLarge(const RECT& window) {
  return window.right - window.left >= kLeast && window.bottom - window.top >= kLeast;
}

}  // namespace

RECT fitted(RECT window, const RECT& screen) {
  const LONG width = std::min(window.right - window.left, screen.right - screen.left);
  const LONG height = std::min(window.bottom - window.top, screen.bottom - screen.top);
  const LONG left = std::clamp(window.left, screen.left, screen.right - width);
  const LONG top = std::clamp(window.top, screen.top, screen.bottom - height);
  return {left, top, left + width, top + height};
}

Placement readPlacement(const std::filesystem::path& file) {
  Placement placement;
  Reader reader(file);
  for (const Edge& edge : kEdges) {
    placement.window.*edge.value = reader.number(kWindow, edge.key, 0, -kFarthest, kFarthest);
  }
  RECT& window = placement.window;
  window = isLarge(window) ? fitted(window, nearestScreen(window)) : RECT{};
  placement.isMaximized = reader.number(kWindow, L"maximized", 0, 0, 1) != 0;
  placement.splits.side = reader.share(L"side", placement.splits.side);
  placement.splits.bottom = reader.share(L"lower", placement.splits.bottom);
  for (std::size_t i = 0; i < placement.panes.size(); ++i) placement.panes[i] = reader.look(kPanes[i]);
  reader.widths(kQueue, kQueueWidths, placement.queue);
  placement.isBroken = reader.isBroken();
  return placement;
}

void writePlacement(const std::filesystem::path& file, const Placement& placement) {
  std::error_code ignored;
  std::filesystem::create_directories(file.parent_path(), ignored);
  for (const Edge& edge : kEdges) {
    write(file, kWindow, edge.key, static_cast<int>(placement.window.*edge.value));
  }
  write(file, kWindow, L"maximized", placement.isMaximized ? 1 : 0);
  write(file, kWindow, L"side", static_cast<int>(placement.splits.side * kShares));
  write(file, kWindow, L"lower", static_cast<int>(placement.splits.bottom * kShares));
  for (std::size_t i = 0; i < placement.panes.size(); ++i) writeLook(file, kPanes[i], placement.panes[i]);
  writeWidths(file, kQueue, kQueueWidths, placement.queue);
}

}  // namespace browse
