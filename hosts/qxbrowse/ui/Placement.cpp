// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/Placement.h"

#include <array>
#include <string>

namespace browse {
namespace {

constexpr const wchar_t* kSection = L"window";
constexpr int kShares = 1000;
constexpr int kLeast = 100;  // pixels that a window of any use has in each direction

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

int read(const std::filesystem::path& file, const wchar_t* key, int usual) {
  return static_cast<int>(GetPrivateProfileIntW(kSection, key, usual, file.c_str()));
}

void write(const std::filesystem::path& file, const wchar_t* key, int value) {
  WritePrivateProfileStringW(kSection, key, std::to_wstring(value).c_str(), file.c_str());
}

double readShare(const std::filesystem::path& file, const wchar_t* key, double usual) {
  const int share = read(file, key, -1);
  return share < 0 || share > kShares ? usual : static_cast<double>(share) / kShares;
}

bool isUsable(const RECT& window) {
  const bool isLarge = window.right - window.left >= kLeast && window.bottom - window.top >= kLeast;
  return isLarge && MonitorFromRect(&window, MONITOR_DEFAULTTONULL) != nullptr;
}

}  // namespace

Placement readPlacement(const std::filesystem::path& file) {
  Placement placement;
  for (const Edge& edge : kEdges) placement.window.*edge.value = read(file, edge.key, 0);
  if (!isUsable(placement.window)) placement.window = {};
  placement.isMaximized = read(file, L"maximized", 0) != 0;
  placement.splits.side = readShare(file, L"side", placement.splits.side);
  placement.splits.bottom = readShare(file, L"lower", placement.splits.bottom);
  return placement;
}

void writePlacement(const std::filesystem::path& file, const Placement& placement) {
  std::error_code ignored;
  std::filesystem::create_directories(file.parent_path(), ignored);
  for (const Edge& edge : kEdges) write(file, edge.key, static_cast<int>(placement.window.*edge.value));
  write(file, L"maximized", placement.isMaximized ? 1 : 0);
  write(file, L"side", static_cast<int>(placement.splits.side * kShares));
  write(file, L"lower", static_cast<int>(placement.splits.bottom * kShares));
}

}  // namespace browse
