// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/window/MainWindow.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "hosts/qxbrowse/lists/Formats.h"
#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/ui/WindowText.h"

namespace browse {
namespace {

constexpr const wchar_t* kClassName = L"qxbrowse";
constexpr WORD kIcon = 1;     // in the program's resources (qxbrowse.rc)
constexpr int kWidth = 1100;  // at 96 dots per inch
constexpr int kHeight = 700;
constexpr int kStep = 16;               // of a border that the keyboard moves
constexpr std::size_t kMostKept = 100;  // selected items: each is looked for among all

struct Button {
  Command command;
  Text text;
};

constexpr Button kButtons[] = {
    {Command::connect, Text::buttonConnect},   {Command::refresh, Text::buttonRefresh},
    {Command::transfer, Text::buttonTransfer}, {Command::newFolder, Text::buttonNewFolder},
    {Command::rename, Text::buttonRename},     {Command::remove, Text::buttonDelete},
    {Command::cancel, Text::buttonCancel},
};

[[noreturn]] void throwLastError() {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
}

// Of the size that the system wants; another program's window (a test's) has the system's own.
HICON programIcon(int width) {
  const int size = GetSystemMetrics(width);
  const HANDLE icon =
      LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(kIcon), IMAGE_ICON, size, size, LR_SHARED);
  return icon != nullptr ? static_cast<HICON>(icon) : LoadIconW(nullptr, IDI_APPLICATION);
}

std::vector<std::wstring> namesOf(const std::vector<Item>& items) {
  std::vector<std::wstring> names;
  for (std::size_t i = 0; i < std::min(items.size(), kMostKept); ++i) names.push_back(items[i].name);
  return names;
}

}  // namespace

MainWindow::MainWindow(Services& services) : m_services(services) {
  for (const Side side : {Side::local, Side::server}) {
    m_panes[static_cast<std::size_t>(side)] = std::make_unique<ListPane>(side, eventsOf(side));
  }
}

MainWindow::~MainWindow() {
  if (m_window != nullptr) DestroyWindow(m_window);
}

void MainWindow::registerClass() const {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = &handleMessage;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.hIcon = programIcon(SM_CXICON);
  windowClass.hIconSm = programIcon(SM_CXSMICON);
  windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  windowClass.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  windowClass.lpszClassName = kClassName;
  if (RegisterClassExW(&windowClass) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) throwLastError();
}

void MainWindow::create() {
  const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_WIN95_CLASSES};
  InitCommonControlsEx(&controls);
  registerClass();
  const UINT dpi = GetDpiForSystem();
  const HWND window =
      CreateWindowExW(WS_EX_ACCEPTFILES, kClassName, text(Text::programName),
                      WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT, scale(kWidth, dpi),
                      scale(kHeight, dpi), nullptr, makeMenuBar(), GetModuleHandleW(nullptr), this);
  if (window == nullptr) throwLastError();
  makeToolbar();
  makePanes();
  m_status =
      CreateWindowExW(0, STATUSCLASSNAMEW, text(Text::statusReady), WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0,
                      0, 0, 0, m_window, nullptr, GetModuleHandleW(nullptr), nullptr);
  useDpi(dpiOf(m_window));
  updateCommands();
  showMessage(text(Text::statusNotConnected));
}

void MainWindow::makeToolbar() {
  m_toolbar = CreateWindowExW(0, TOOLBARCLASSNAMEW, nullptr,
                              WS_CHILD | WS_VISIBLE | TBSTYLE_FLAT | TBSTYLE_LIST | CCS_NODIVIDER, 0, 0, 0, 0,
                              m_window, nullptr, GetModuleHandleW(nullptr), nullptr);
  SendMessageW(m_toolbar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
  for (const Button& button : kButtons) {
    TBBUTTON wanted{};
    wanted.iBitmap = I_IMAGENONE;
    wanted.idCommand = static_cast<int>(button.command);
    wanted.fsState = TBSTATE_ENABLED;
    wanted.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | BTNS_SHOWTEXT;
    wanted.iString = reinterpret_cast<INT_PTR>(text(button.text));
    SendMessageW(m_toolbar, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&wanted));
  }
}

void MainWindow::makePanes() {
  for (const auto& pane : m_panes) pane->create(m_window);
}

void MainWindow::show(int how) {
  ShowWindow(m_window, how);
  UpdateWindow(m_window);
  pane(m_active).focusList();
}

void MainWindow::setBottomPane(BottomPane pane) {
  m_bottom = std::move(pane);
  if (m_bottom.setFont) m_bottom.setFont(m_font.get(), m_dpi);
  layOut();
}

void MainWindow::setPlacement(const Placement& placement) {
  m_splits = placement.splits;
  for (std::size_t i = 0; i < m_panes.size(); ++i) m_panes[i]->setLook(placement.panes[i]);
  WINDOWPLACEMENT place{};
  place.length = sizeof place;
  GetWindowPlacement(m_window, &place);
  if (!IsRectEmpty(&placement.window)) place.rcNormalPosition = placement.window;
  place.showCmd = SW_HIDE;  // until show()
  SetWindowPlacement(m_window, &place);
  layOut();
}

Placement MainWindow::placement() const {
  WINDOWPLACEMENT place{};
  place.length = sizeof place;
  GetWindowPlacement(m_window, &place);
  Placement now{place.rcNormalPosition, IsZoomed(m_window) != 0, m_splits, {}, {}, false};
  for (std::size_t i = 0; i < m_panes.size(); ++i) now.panes[i] = m_panes[i]->look();
  return now;
}

void MainWindow::close() {
  if (m_window != nullptr) DestroyWindow(m_window);
}

void MainWindow::useDpi(UINT dpi) {
  m_dpi = dpi;
  Font font = systemFont(m_dpi);
  for (const auto& pane : m_panes) pane->setFont(font.get(), m_dpi);
  for (HWND control : {m_toolbar, m_status}) {
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
  }
  SendMessageW(m_toolbar, TB_AUTOSIZE, 0, 0);
  if (m_bottom.setFont) m_bottom.setFont(font.get(), m_dpi);
  m_font = std::move(font);  // the old one goes when nobody has it any more
  layOut();
}

void MainWindow::onDpiChanged(UINT dpi, const RECT& suggested) {
  SetWindowPos(m_window, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
               suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
  useDpi(dpi);
}

RECT MainWindow::middle() const {
  RECT area{}, toolbar{}, status{};
  GetClientRect(m_window, &area);
  GetWindowRect(m_toolbar, &toolbar);
  GetWindowRect(m_status, &status);
  area.top += toolbar.bottom - toolbar.top;
  area.bottom -= status.bottom - status.top;
  return area;
}

Layout MainWindow::arranged() const {
  Splits splits = m_splits;
  if (m_bottom.window == nullptr) splits.bottom = 1;
  return arrange(middle(), splits, m_dpi);
}

void MainWindow::layOut() {
  if (m_status == nullptr) return;
  SendMessageW(m_toolbar, TB_AUTOSIZE, 0, 0);
  SendMessageW(m_status, WM_SIZE, 0, 0);
  const Layout layout = arranged();
  pane(Side::local).place(layout.local, m_dpi);
  pane(Side::server).place(layout.server, m_dpi);
  const RECT& bottom = layout.bottom;
  if (m_bottom.window != nullptr) {
    MoveWindow(m_bottom.window, bottom.left, bottom.top, bottom.right - bottom.left,
               bottom.bottom - bottom.top, TRUE);
  }
}

MainWindow::Grip MainWindow::gripAt(POINT at) const {
  const Layout layout = arranged();
  if (PtInRect(&layout.sideSplitter, at)) return Grip::side;
  return m_bottom.window != nullptr && PtInRect(&layout.bottomSplitter, at) ? Grip::bottom : Grip::none;
}

void MainWindow::dragGrip(Grip grip, POINT to) {
  m_splits = grip == Grip::side ? dragSide(middle(), m_splits, to) : dragBottom(middle(), m_splits, to);
  layOut();
}

// From where it is seen, which is not where it was dragged to when there was no room for that.
void MainWindow::nudgeGrip(Grip grip, int steps) {
  const Layout now = arranged();
  const RECT& bar = grip == Grip::side ? now.sideSplitter : now.bottomSplitter;
  const int way = steps * scale(kStep, m_dpi);
  dragGrip(grip, {(bar.left + bar.right) / 2 + way, (bar.top + bar.bottom) / 2 + way});
}

void MainWindow::beginMovingBorders() {
  m_splitsBefore = m_splits;
  showMessage(text(Text::statusSplitting));
}

// Whether it was a key for that. Any other one ends it, and is what it always is.
bool MainWindow::moveBorders(WORD key) {
  if (!m_splitsBefore) return false;
  if (key == VK_LEFT || key == VK_RIGHT) return nudgeGrip(Grip::side, key == VK_LEFT ? -1 : 1), true;
  if (key == VK_UP || key == VK_DOWN) return nudgeGrip(Grip::bottom, key == VK_UP ? -1 : 1), true;
  const Splits before = *std::exchange(m_splitsBefore, std::nullopt);
  if (key == VK_ESCAPE) m_splits = before;
  layOut();
  showMessage(text(Text::statusReady));
  return key == VK_ESCAPE || key == VK_RETURN;
}

bool MainWindow::showGripCursor() const {
  POINT at{};
  GetCursorPos(&at);
  ScreenToClient(m_window, &at);
  const Grip grip = gripAt(at);
  if (grip != Grip::none) SetCursor(LoadCursorW(nullptr, grip == Grip::side ? IDC_SIZEWE : IDC_SIZENS));
  return grip != Grip::none;
}

Situation MainWindow::situation() const {
  Situation now;
  now.side = m_active;
  now.isConnected = m_isConnected;
  now.isLocalFolderShown = pane(Side::local).isShown() && !pane(Side::local).path().empty();
  now.selected = pane(m_active).selectedCount();
  now.isParentSelected = pane(m_active).isParentSelected();
  now.isFolder = now.selected == 1 && pane(m_active).isFolderSelected();
  return now;
}

void MainWindow::updateCommands() {
  const Situation now = situation();
  updateMenu(GetMenu(m_window), now);
  for (const Button& button : kButtons) {
    SendMessageW(m_toolbar, TB_ENABLEBUTTON, static_cast<WPARAM>(button.command),
                 isPossible(button.command, now) ? TRUE : FALSE);
  }
}

void MainWindow::updateStatus() {
  const ListPane& active = pane(m_active);
  const std::wstring count = exactText(active.items().size());
  const int selected = active.selectedCount();
  const std::wstring items =
      selected == 0 ? text(Text::statusItems, {count})
                    : text(Text::statusSelected, {count, exactText(static_cast<std::uint64_t>(selected))});
  const int parts[] = {scale(260, m_dpi), -1};
  SendMessageW(m_status, SB_SETPARTS, std::size(parts), reinterpret_cast<LPARAM>(parts));
  SendMessageW(m_status, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(items.c_str()));
  SendMessageW(m_status, SB_SETTEXTW, 1, reinterpret_cast<LPARAM>(m_message.c_str()));
}

void MainWindow::showMessage(const std::wstring& message) {
  m_message = message;
  updateStatus();
}

void MainWindow::showConnected(const std::wstring& site) {
  m_isConnected = true;
  setWindowText(m_window, text(Text::windowTitle, {site}));
  updateCommands();
}

void MainWindow::showDisconnected() {
  m_isConnected = false;
  m_requested[static_cast<std::size_t>(Side::server)].clear();
  pane(Side::server).clear();
  setWindowText(m_window, text(Text::programName));
  updateCommands();
  showMessage(text(Text::statusNotConnected));
}

void MainWindow::go(Side side, const std::wstring& path) {
  if (m_isEnding) return;
  m_requested[static_cast<std::size_t>(side)] = path;
  showMessage(text(Text::statusListing, {path}));
  m_services.list(side, path);
}

void MainWindow::showFolder(Side side, const std::wstring& path, ItemList items) {
  if (m_window == nullptr || path != m_requested[static_cast<std::size_t>(side)]) return;
  std::wstring& toSelect = m_toSelect[static_cast<std::size_t>(side)];
  // A folder that is listed again, behind a transfer for one, stays as the user has it.
  std::vector<std::wstring> names{std::exchange(toSelect, {})};
  if (names.front().empty() && pane(side).path() == path) names = namesOf(pane(side).selected());
  pane(side).show(path, std::move(items));
  pane(side).select(names);
  // A message that came meanwhile stays.
  if (m_message == text(Text::statusListing, {path})) showMessage(text(Text::statusReady));
  updateCommands();
}

void MainWindow::showFolderFailed(Side side, const std::wstring& path, const std::wstring& why) {
  if (m_window == nullptr || path != m_requested[static_cast<std::size_t>(side)]) return;
  m_requested[static_cast<std::size_t>(side)] = pane(side).path();
  setWindowText(pane(side).address(), pane(side).path());
  showMessage(text(Text::statusFolderFailed, {path, why}));
}

void MainWindow::refresh(Side side, const std::wstring& path) {
  if (pane(side).isShown() && pane(side).path() == path) go(side, path);
}

}  // namespace browse
