// SPDX-License-Identifier: MIT
// One side of the window: a line for its folder, and below it the list. The list asks for what it shows, so
// that its size costs nothing. Its first row leads to the folder above, where there is one, and is no item.
// On the window's thread alone.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "hosts/qxbrowse/lists/FileKinds.h"
#include "hosts/qxbrowse/lists/ItemList.h"
#include "hosts/qxbrowse/ui/Dpi.h"

namespace browse {

// What the user does in a pane.
struct PaneEvents {
  std::function<void(const std::wstring& path)> pathTyped;
  std::function<void()> parentPressed;
  std::function<void()> activated;  // a double click
  std::function<void(const Item& item, const std::wstring& name)> renamed;
  std::function<void()> focused;
  std::function<void()> selectionChanged;
  std::function<void(const NMLISTVIEW& what)> dragBegun;
};

// What the user has made of the columns.
struct PaneLook {
  std::array<int, kColumns> widths{};  // at 96 dots per inch; 0: as usual
  Sorting sorting;
};

class ListPane {
 public:
  ListPane(Side side, PaneEvents events) : m_side(side), m_events(std::move(events)) {}

  // Makes the controls in `parent`, which gives their messages to onNotify and onCommand.
  void create(HWND parent);
  void place(const RECT& area, UINT dpi);
  void setFont(HFONT font, UINT dpi);

  void show(const std::wstring& path, ItemList items);
  void clear();
  // Selects these items alone and brings the first of them into view; the first of all where there is none,
  // and the way up where there are no items.
  void select(const std::vector<std::wstring>& names);
  void selectAll();
  void sort(Column column);  // a second time: the other way round
  void setSorting(Sorting sorting);
  // Behind setFont().
  void setLook(const PaneLook& look);
  [[nodiscard]] PaneLook look() const;
  void editName();     // of the focused item
  void editAddress();  // puts the caret into it
  void focusList();

  [[nodiscard]] const std::wstring& path() const { return m_path; }
  [[nodiscard]] bool isShown() const { return m_isShown; }
  [[nodiscard]] const ItemList& items() const { return m_items; }
  [[nodiscard]] std::vector<Item> selected() const;
  [[nodiscard]] int selectedCount() const;
  // Whether the only one that is selected is one.
  [[nodiscard]] bool isFolderSelected() const;
  // Whether the way up is what is selected, and nothing else.
  [[nodiscard]] bool isParentSelected() const;
  // Where a drop at this place of the screen goes to: the folder there, or the one above, or the shown one.
  [[nodiscard]] std::wstring folderAt(POINT screen) const;

  [[nodiscard]] HWND list() const { return m_list; }
  [[nodiscard]] HWND address() const { return m_address; }
  [[nodiscard]] bool owns(HWND control) const;

  // Nothing: it was not for this pane.
  std::optional<LRESULT> onNotify(const NMHDR& header);
  bool onCommand(HWND control, WORD what);

 private:
  HWND makeChild(const wchar_t* className, const wchar_t* title, DWORD style, DWORD extendedStyle) const;
  void showArrow() const;
  void fillIn(NMLVDISPINFOW& wanted);
  [[nodiscard]] std::wstring cellText(const Item& item, Column column);
  [[nodiscard]] LRESULT findRow(const NMLVFINDITEMW& wanted) const;
  LRESULT endEdit(const NMLVDISPINFOW& edit);
  [[nodiscard]] std::vector<std::size_t> selectedItems() const;  // rows of m_items
  void setRowState(int row, UINT state) const;
  void selectItem(std::size_t item, UINT state) const { setRowState(rowOf(item), state); }
  // Rows of the list and of m_items: the list's first may be the way up.
  [[nodiscard]] int rowOf(std::size_t item) const { return static_cast<int>(item) + (m_hasParent ? 1 : 0); }
  [[nodiscard]] const Item* itemAt(int row) const;
  [[nodiscard]] bool isParent(int row) const { return m_hasParent && row == 0; }
  [[nodiscard]] bool isSelected(int row) const;
  static LRESULT CALLBACK handleAddress(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                        DWORD_PTR pane);
  bool onAddressKey(WPARAM key);

  const Side m_side;
  const PaneEvents m_events;
  ItemList m_items;
  FileKinds m_kinds;
  std::wstring m_path;
  std::wstring m_cell;  // what the list shows just now, until it asks for the next
  bool m_isShown = false;
  bool m_hasParent = false;
  UINT m_dpi = kPlainDpi;
  HWND m_parent = nullptr;
  HWND m_label = nullptr;
  HWND m_up = nullptr;
  HWND m_address = nullptr;
  HWND m_list = nullptr;
};

}  // namespace browse
