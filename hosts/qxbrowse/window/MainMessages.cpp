// SPDX-License-Identifier: MIT
// What the system and the user tell the main window.
#include <cwchar>

#include "hosts/qxbrowse/ui/MenuPlace.h"
#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/window/MainWindow.h"
// Only now:
#include <windowsx.h>

namespace browse {
namespace {

bool isTextEdited() {
  wchar_t name[8] = L"";
  GetClassNameW(GetFocus(), name, static_cast<int>(std::size(name)));
  return std::wcscmp(name, L"Edit") == 0;
}

BYTE modifiersNow() {
  BYTE modifiers = 0;
  if (GetKeyState(VK_CONTROL) < 0) modifiers |= FCONTROL;
  if (GetKeyState(VK_SHIFT) < 0) modifiers |= FSHIFT;
  if (GetKeyState(VK_MENU) < 0) modifiers |= FALT;
  return modifiers;
}

std::wstring droppedFile(HDROP drop, UINT number) {
  std::wstring path(DragQueryFileW(drop, number, nullptr, 0) + std::size_t{1}, L'\0');
  path.resize(DragQueryFileW(drop, number, path.data(), static_cast<UINT>(path.size())));
  return path;
}

// Who uploads them looks at what they are: a network that does not answer must not hold the window.
std::vector<Place> droppedPlaces(HDROP drop) {
  std::vector<Place> places;
  const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
  for (UINT number = 0; number < count; ++number) places.push_back({.path = droppedFile(drop, number)});
  return places;
}

}  // namespace

LRESULT CALLBACK MainWindow::handleMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (message == WM_NCCREATE) {
    self = static_cast<MainWindow*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
    self->m_window = window;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
  }
  if (self == nullptr) return DefWindowProcW(window, message, wParam, lParam);
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    self->m_window = nullptr;
    return DefWindowProcW(window, message, wParam, lParam);
  }
  return self->onMessage(message, wParam, lParam);
}

LRESULT MainWindow::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      layOut();
      return 0;
    case WM_SETFOCUS:
      pane(m_active).focusList();
      return 0;
    case WM_NOTIFY:
      return onNotify(*reinterpret_cast<const NMHDR*>(lParam));
    case WM_COMMAND:
      onCommand(wParam, lParam);
      return 0;
    case WM_CONTEXTMENU:
      onContextMenu(reinterpret_cast<HWND>(wParam), {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_LBUTTONDOWN:
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
      onMouse(message, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_SETCURSOR:
      if (LOWORD(lParam) == HTCLIENT && reinterpret_cast<HWND>(wParam) == m_window && showGripCursor())
        return TRUE;
      break;
    case WM_DROPFILES:
      onDropFiles(reinterpret_cast<HDROP>(wParam));
      return 0;
    case WM_DPICHANGED:
      onDpiChanged(HIWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
      return 0;
    case WM_CLOSE:
      onClose();
      return 0;
    case WM_ENDSESSION:
      if (wParam != FALSE) end();  // behind it the process is ended: no time for questions
      return 0;
    case WM_DESTROY:
      m_status = nullptr;  // nothing is laid out any more
      PostQuitMessage(0);
      return 0;
    default:
      break;
  }
  return DefWindowProcW(m_window, message, wParam, lParam);
}

LRESULT MainWindow::onNotify(const NMHDR& header) {
  for (const auto& pane : m_panes) {
    if (const auto answer = pane->onNotify(header)) return *answer;
  }
  return 0;
}

void MainWindow::onCommand(WPARAM wParam, LPARAM lParam) {
  const auto control = reinterpret_cast<HWND>(lParam);
  for (const auto& pane : m_panes) {
    if (control != nullptr && pane->onCommand(control, HIWORD(wParam))) return;
  }
  const bool isCommand = control == nullptr || control == m_toolbar;
  if (isCommand) execute(static_cast<Command>(LOWORD(wParam)));
}

void MainWindow::onMouse(UINT message, POINT at) {
  POINT screen = at;
  ClientToScreen(m_window, &screen);
  if (message == WM_LBUTTONDOWN && (m_grip = gripAt(at)) != Grip::none) SetCapture(m_window);
  if (message == WM_MOUSEMOVE && m_grip != Grip::none) dragGrip(m_grip, at);
  if (message == WM_MOUSEMOVE && m_drag.isRunning()) m_drag.moveTo(screen);
  if (message == WM_LBUTTONUP && m_drag.isRunning()) drop(screen);
  if (message == WM_LBUTTONUP && m_grip != Grip::none) ReleaseCapture();
  if (message == WM_CAPTURECHANGED) {
    m_grip = Grip::none;
    m_drag.end();
  }
}

void MainWindow::beginDrag(Side from, const NMLISTVIEW& what) {
  if (!isPossible(Command::transfer, situation())) return;
  m_dragFrom = from;
  m_drag.begin(m_window, what.hdr.hwndFrom, what.iItem);
}

// On a folder of the other side: into that one.
void MainWindow::drop(POINT screen) {
  m_drag.end();
  const Side to = m_dragFrom == Side::local ? Side::server : Side::local;
  if (WindowFromPoint(screen) != pane(to).list()) return;
  transfer(m_dragFrom, pane(to).folderAt(screen));
}

// From another program. Those that are dropped on the local side are not what anybody wants on the server.
void MainWindow::onDropFiles(HDROP drop) {
  const std::vector<Place> places = droppedPlaces(drop);
  POINT at{};
  DragQueryPoint(drop, &at);
  DragFinish(drop);
  const RECT server = arranged().server;
  if (!m_isConnected) return showMessage(text(Text::statusNotConnected));
  if (!PtInRect(&server, at)) return showMessage(text(Text::statusDropElsewhere));
  ClientToScreen(m_window, &at);
  upload(places, pane(Side::server).folderAt(at));
}

void MainWindow::onContextMenu(HWND control, POINT at) {
  for (const auto& pane : m_panes) {
    if (control != pane->list()) continue;
    const POINT place = menuPlace(control, at);
    pane->focusList();
    const HMENU menu = makeContextMenu(situation());
    TrackPopupMenu(menu, TPM_RIGHTBUTTON, place.x, place.y, 0, m_window, nullptr);
    DestroyMenu(menu);
    return;
  }
}

void MainWindow::onClose() {
  // A dialog in front of it, such as the question below, is to be answered first.
  if (!IsWindowEnabled(m_window)) return static_cast<void>(SetForegroundWindow(GetLastActivePopup(m_window)));
  EndMenu();  // what runs ends below it
  if (!m_isEnding && (!m_mayClose || m_mayClose())) end();
}

void MainWindow::end() {
  if (m_isEnding) return;
  m_isEnding = true;
  ShowWindow(m_window, SW_HIDE);  // to the user it has closed
  m_services.end();
}

bool MainWindow::translate(const MSG& message) {
  const bool isKey = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
  const bool isOurs = message.hwnd == m_window || IsChild(m_window, message.hwnd);
  if (!isKey || !isOurs || m_window == nullptr) return false;
  if (m_drag.isRunning() && message.wParam == VK_ESCAPE) return m_drag.end(), true;
  const auto code = static_cast<WORD>(message.wParam);
  if (moveBorders(code)) return true;
  const BYTE ignored = code == VK_TAB ? FSHIFT : 0;
  // Below the two sides only Esc means what it does in them.
  const bool isNoList = isTextEdited() || (isBottomFocused() && code != VK_ESCAPE);
  const auto command = commandOf(code, static_cast<BYTE>(modifiersNow() & ~ignored), isNoList);
  if (command) execute(*command);
  return command.has_value();
}

}  // namespace browse
