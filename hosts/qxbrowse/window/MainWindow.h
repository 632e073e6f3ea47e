// SPDX-License-Identifier: MIT
// The window: menu, toolbar, the two sides, a place for the pane below them, a status bar. It knows neither
// the library nor a thread: what is to be done goes to Services, what has come of it comes back by the show
// functions. All of it on one thread, whose loop of messages calls translate() for each of them.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/qxbrowse/lists/ItemDrag.h"
#include "hosts/qxbrowse/lists/ListPane.h"
#include "hosts/qxbrowse/ui/Dpi.h"
#include "hosts/qxbrowse/window/Commands.h"
#include "hosts/qxbrowse/window/Layout.h"
#include "hosts/qxbrowse/window/Placement.h"
#include "hosts/qxbrowse/window/Services.h"

namespace browse {

// What stands below the two sides, made and owned by another: its window, which the main window places, and
// what it does with the rest.
struct BottomPane {
  HWND window = nullptr;
  std::function<void(HFONT font, UINT dpi)> setFont;
  std::function<void()> focus;  // Tab has come to it
};

class MainWindow {
 public:
  explicit MainWindow(Services& services);
  ~MainWindow();
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  // Throws std::system_error.
  void create();
  void show(int how);
  void setBottomPane(BottomPane pane);
  // Between create() and show().
  void setPlacement(const Placement& placement);
  // As it is now, but for the queue. REQUIRES: the window is there.
  [[nodiscard]] Placement placement() const;
  // The end of it, when Services::end() has ended all work.
  void close();
  [[nodiscard]] HWND handle() const { return m_window; }
  // Whether what is open may be closed; asked when the user closes the window.
  void setMayClose(std::function<bool()> mayClose) { m_mayClose = std::move(mayClose); }

  // Does the command of a key; true: the message is done. Any loop that dispatches this thread's messages
  // calls it first, also that of the library, where a hook (WH_GETMESSAGE) has to do it.
  bool translate(const MSG& message);
  void execute(Command command);
  // Whether the arrow keys move the borders, whatever has the focus.
  [[nodiscard]] bool isMovingBorders() const { return m_splitsBefore.has_value(); }

  // What has come of the work.
  void showConnected(const std::wstring& site);
  void showDisconnected();
  // Not when another folder of the side was asked for meanwhile.
  void showFolder(Side side, const std::wstring& path, ItemList items);
  void showFolderFailed(Side side, const std::wstring& path, const std::wstring& why);
  void showMessage(const std::wstring& message);
  // Lists the folder again, when it is this one.
  void refresh(Side side, const std::wstring& path);
  // Asks for the folder.
  void go(Side side, const std::wstring& path);

  [[nodiscard]] ListPane& pane(Side side) { return *m_panes[static_cast<std::size_t>(side)]; }
  [[nodiscard]] const ListPane& pane(Side side) const { return *m_panes[static_cast<std::size_t>(side)]; }
  [[nodiscard]] Situation situation() const;

 private:
  enum class Grip { none, side, bottom };

  static LRESULT CALLBACK handleMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT onNotify(const NMHDR& header);
  void onCommand(WPARAM wParam, LPARAM lParam);
  void onMouse(UINT message, POINT at);
  void onContextMenu(HWND control, POINT at);
  void onDropFiles(HDROP drop);
  void onDpiChanged(UINT dpi, const RECT& suggested);
  void onClose();
  void end();

  void registerClass() const;
  void makeToolbar();
  void makePanes();
  PaneEvents eventsOf(Side side);
  void useDpi(UINT dpi);
  void layOut();
  [[nodiscard]] RECT middle() const;
  [[nodiscard]] Layout arranged() const;
  [[nodiscard]] Grip gripAt(POINT at) const;
  void dragGrip(Grip grip, POINT to);
  void nudgeGrip(Grip grip, int steps);
  void beginMovingBorders();
  bool moveBorders(WORD key);
  bool showGripCursor() const;
  void updateCommands();
  void updateStatus();

  void beginDrag(Side from, const NMLISTVIEW& what);
  void drop(POINT screen);

  bool runOnPane(Command command);
  bool runOnServices(Command command);
  void open();
  void goToParent(Side side);
  void transfer(Side from, const std::wstring& toFolder);
  void askAndCopy(bool isMove);
  void askAndCreateFolder();
  void askAndRemove();
  void rename(Side side, const Item& item, const std::wstring& name);
  void upload(const std::vector<Place>& places, const std::wstring& toFolder);
  void focusNext();
  [[nodiscard]] bool isBottomFocused() const;
  [[nodiscard]] std::vector<Place> selectedPlaces(Side side) const;
  [[nodiscard]] std::wstring join(Side side, const std::wstring& name) const;

  Services& m_services;
  std::array<std::unique_ptr<ListPane>, 2> m_panes;
  std::array<std::wstring, 2> m_requested;  // the folder that each side waits for, or shows
  std::array<std::wstring, 2> m_toSelect;   // in the next listing
  BottomPane m_bottom;
  std::function<bool()> m_mayClose;
  ItemDrag m_drag;
  Side m_dragFrom = Side::local;
  Side m_active = Side::local;
  bool m_isConnected = false;
  std::wstring m_message;
  Splits m_splits;
  bool m_isEnding = false;
  Grip m_grip = Grip::none;
  std::optional<Splits> m_splitsBefore;  // while the arrow keys move the borders
  Font m_font;
  UINT m_dpi = kPlainDpi;
  HWND m_window = nullptr;
  HWND m_toolbar = nullptr;
  HWND m_status = nullptr;
};

}  // namespace browse
