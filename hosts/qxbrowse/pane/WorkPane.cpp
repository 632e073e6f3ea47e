// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/pane/WorkPane.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "hosts/qxbrowse/ui/System.h"
// Only now:
#include <windowsx.h>

namespace browse {
namespace {

constexpr wchar_t kPaneClass[] = L"qxbrowse.work";
constexpr WorkPane::Tab kTabs[] = {WorkPane::Tab::queue, WorkPane::Tab::reports, WorkPane::Tab::protocol};
constexpr Text kTitles[] = {Text::tabQueue, Text::tabReports, Text::tabProtocol};

// What the lists of the two sides would do with it.
bool isForLists(WPARAM key) {
  return key == VK_DELETE || key == VK_F2 || key == VK_RETURN || key == VK_BACK || key == 'A';
}

}  // namespace

BottomPane WorkPane::create(HWND parent, TransferQueue& queue, QueuePane::Retry retry) {
  makeWindow(parent);
  makeTabs();
  m_queue.create(m_window, queue, std::move(retry));
  m_reports.create(m_window, text(Text::reportsList));
  m_protocol.create(m_window, text(Text::protocolList));
  showSelected();
  return {.window = m_window,
          .setFont = [this](HFONT font, UINT dpi) { setFont(font, dpi); },
          .focus = [this] { SetFocus(windowOf(selected())); }};
}

void WorkPane::makeWindow(HWND parent) {
  WNDCLASSW paneClass{};
  paneClass.lpfnWndProc = &handle;
  paneClass.hInstance = GetModuleHandleW(nullptr);
  paneClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  paneClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  paneClass.lpszClassName = kPaneClass;
  RegisterClassW(&paneClass);
  m_window =
      CreateWindowExW(WS_EX_CONTROLPARENT, kPaneClass, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0,
                      0, 0, parent, nullptr, paneClass.hInstance, nullptr);
  if (m_window == nullptr) throw std::runtime_error("the system makes no window");
  SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

void WorkPane::makeTabs() {
  m_tabs = CreateWindowExW(0, WC_TABCONTROLW, nullptr, WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS,
                           0, 0, 0, 0, m_window, nullptr, GetModuleHandleW(nullptr), nullptr);
  for (std::size_t i = 0; i < std::size(kTabs); ++i) {
    std::wstring title = text(kTitles[i]);
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = title.data();
    SendMessageW(m_tabs, TCM_INSERTITEMW, i, reinterpret_cast<LPARAM>(&item));
  }
}

WorkPane::Tab WorkPane::selected() const { return kTabs[SendMessageW(m_tabs, TCM_GETCURSEL, 0, 0)]; }

HWND WorkPane::windowOf(Tab tab) const {
  if (tab == Tab::queue) return m_queue.window();
  return tab == Tab::reports ? m_reports.window() : m_protocol.window();
}

void WorkPane::show(Tab tab) {
  SendMessageW(m_tabs, TCM_SETCURSEL, static_cast<WPARAM>(tab), 0);
  showSelected();
}

void WorkPane::showSelected() const {
  const bool hadFocus = IsChild(m_window, GetFocus()) && GetFocus() != m_tabs;
  const HWND shown = windowOf(selected());
  for (const Tab tab : kTabs) ShowWindow(windowOf(tab), windowOf(tab) == shown ? SW_SHOW : SW_HIDE);
  if (hadFocus) SetFocus(shown);
}

void WorkPane::setFont(HFONT font, UINT dpi) {
  for (HWND control : {m_tabs, m_queue.window(), m_reports.window(), m_protocol.window()}) {
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  }
  m_queue.setFont(dpi);
  layOut();
}

void WorkPane::layOut() const {
  RECT area{};
  GetClientRect(m_window, &area);
  MoveWindow(m_tabs, 0, 0, area.right, area.bottom, TRUE);
  SendMessageW(m_tabs, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
  area.bottom = std::max(area.top, area.bottom);
  m_queue.place(area);
  m_reports.place(area);
  m_protocol.place(area);
  for (const Tab tab : kTabs)
    SetWindowPos(windowOf(tab), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

bool WorkPane::takeKey(const MSG& key) {
  const bool isHere = m_window != nullptr && IsChild(m_window, key.hwnd);
  if (!isHere || key.message != WM_KEYDOWN || !isForLists(key.wParam)) return false;
  const bool isQueue = key.hwnd == m_queue.window();
  if (key.wParam == VK_DELETE && isQueue) m_queue.cancelSelected();
  if (key.wParam == VK_RETURN && isQueue) m_queue.retrySelected();
  return true;
}

LRESULT CALLBACK WorkPane::handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* const pane = reinterpret_cast<WorkPane*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (pane == nullptr) return DefWindowProcW(window, message, wParam, lParam);
  return pane->onMessage(message, wParam, lParam);
}

LRESULT WorkPane::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_SIZE && m_tabs != nullptr && m_protocol.window() != nullptr) layOut();
  if (message == WM_NOTIFY) return onNotify(*reinterpret_cast<const NMHDR*>(lParam));
  if (message == WM_CONTEXTMENU && reinterpret_cast<HWND>(wParam) == m_queue.window()) {
    return m_queue.showMenu({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}), 0;
  }
  if (message == WM_TIMER && m_queue.onTimer(wParam)) return 0;
  return DefWindowProcW(m_window, message, wParam, lParam);
}

LRESULT WorkPane::onNotify(const NMHDR& header) {
  if (header.hwndFrom == m_tabs && header.code == TCN_SELCHANGE) showSelected();
  if (m_reports.onNotify(header) || m_protocol.onNotify(header)) return 0;
  return m_queue.onNotify(header).value_or(0);
}

}  // namespace browse
