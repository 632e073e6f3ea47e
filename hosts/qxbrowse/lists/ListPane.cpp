// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/lists/ListPane.h"

#include <algorithm>
#include <array>

#include "hosts/qxbrowse/lists/Formats.h"
#include "hosts/qxbrowse/lists/SidePaths.h"
#include "hosts/qxbrowse/ui/ListView.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/ui/WindowText.h"

namespace browse {
namespace {

constexpr std::array<ListColumn, kColumns> kItemColumns = {{
    {Text::columnName, 200, LVCFMT_LEFT},
    {Text::columnSize, 80, LVCFMT_RIGHT},
    {Text::columnType, 90, LVCFMT_LEFT},
    {Text::columnTime, 120, LVCFMT_LEFT},
}};

constexpr int kLine = 24;  // the heights and gaps at 96 dots per inch
constexpr int kLabel = 18;
constexpr int kGap = 4;
constexpr int kUpWidth = 44;
constexpr int kMaxPath = 4095;
constexpr DWORD kListStyle =
    LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | LVS_EDITLABELS | LVS_SHAREIMAGELISTS;
constexpr DWORD kExtendedListStyle = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_HEADERDRAGDROP;
constexpr UINT kBoth = LVIS_SELECTED | LVIS_FOCUSED;

}  // namespace

void ListPane::create(HWND parent) {
  const bool isLocal = m_side == Side::local;
  m_parent = parent;
  // Screen readers take a control's name from the label in front of it, a list's from its title.
  m_up = makeChild(WC_BUTTONW, text(Text::parentButton), WS_TABSTOP | BS_PUSHBUTTON, 0);
  m_label = makeChild(WC_STATICW, text(isLocal ? Text::localFolder : Text::serverFolder), SS_NOPREFIX, 0);
  m_address = makeChild(WC_EDITW, L"", WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE);
  SendMessageW(m_address, EM_SETLIMITTEXT, kMaxPath, 0);
  SetWindowSubclass(m_address, &handleAddress, 0, reinterpret_cast<DWORD_PTR>(this));
  m_list = makeChild(WC_LISTVIEWW, text(isLocal ? Text::localFiles : Text::serverFiles),
                     WS_TABSTOP | kListStyle, WS_EX_CLIENTEDGE);
  SendMessageW(m_list, LVM_SETEXTENDEDLISTVIEWSTYLE, kExtendedListStyle, kExtendedListStyle);
  insertColumns(m_list, kItemColumns);
  showArrow();
}

HWND ListPane::makeChild(const wchar_t* className, const wchar_t* title, DWORD style,
                         DWORD extendedStyle) const {
  return CreateWindowExW(extendedStyle, className, title, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, m_parent,
                         nullptr, GetModuleHandleW(nullptr), nullptr);
}

void ListPane::setFont(HFONT font, UINT dpi) {
  for (HWND control : {m_up, m_label, m_address, m_list}) {
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  }
  SendMessageW(m_list, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(shellImages(dpi)));
  scaleColumns(m_list, m_dpi, dpi);
  m_dpi = dpi;
}

void ListPane::place(const RECT& area, UINT dpi) {
  const auto scaled = [dpi](int length) { return scale(length, dpi); };
  const int width = area.right - area.left;
  int top = area.top;
  MoveWindow(m_label, area.left, top, width, scaled(kLabel), TRUE);
  top += scaled(kLabel);
  const int addressWidth = width - scaled(kUpWidth + kGap);
  MoveWindow(m_up, area.left + addressWidth + scaled(kGap), top, scaled(kUpWidth), scaled(kLine), TRUE);
  MoveWindow(m_address, area.left, top, addressWidth, scaled(kLine), TRUE);
  top += scaled(kLine + kGap);
  MoveWindow(m_list, area.left, top, width, std::max<int>(0, area.bottom - top), TRUE);
}

// In the order that the user has chosen meanwhile.
void ListPane::show(const std::wstring& path, ItemList items) {
  SendMessageW(m_list, LVM_CANCELEDITLABEL, 0, 0);  // the rows get other names
  m_path = path;
  m_isShown = true;
  m_hasParent = parentOn(m_side, path) != path;
  const Sorting sorting = m_items.sorting();
  m_items = std::move(items);
  if (m_items.sorting() != sorting) m_items.sort(sorting);
  setWindowText(m_address, path);
  setRowState(-1, 0);
  SendMessageW(m_list, LVM_SETITEMCOUNT, static_cast<WPARAM>(rowOf(m_items.size())), 0);
  m_events.selectionChanged();
}

void ListPane::clear() {
  show(m_side == Side::local ? L"" : L"/", {});  // which have none above them
  m_path.clear();
  setWindowText(m_address, m_path);
  m_isShown = false;
}

void ListPane::select(const std::vector<std::wstring>& names) {
  setRowState(-1, 0);
  std::optional<std::size_t> first;
  for (const std::wstring& name : names) {
    const auto item = m_items.findName(name);
    if (item) selectItem(*item, LVIS_SELECTED);
    if (!first) first = item;
  }
  const int row = m_items.size() > 0 ? rowOf(first.value_or(0)) : 0;
  if (m_items.size() > 0 || m_hasParent) setRowState(row, kBoth);
  // Above the first item is what leads up.
  SendMessageW(m_list, LVM_ENSUREVISIBLE, first.value_or(0) > 0 ? static_cast<WPARAM>(row) : 0, FALSE);
}

void ListPane::selectAll() {
  setRowState(-1, LVIS_SELECTED);
  if (m_hasParent) setRowState(0, 0);
}

// Row -1 stands for all of them.
void ListPane::setRowState(int row, UINT state) const {
  LVITEMW item{};
  item.stateMask = row < 0 || state == 0 ? UINT{LVIS_SELECTED} : kBoth;
  item.state = state;
  SendMessageW(m_list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void ListPane::sort(Column column) {
  const Sorting now = m_items.sorting();
  setSorting({column, now.column == column && !now.isDescending});
}

// What was selected stays so, wherever it goes.
void ListPane::setSorting(Sorting sorting) {
  std::vector<std::size_t> chosen;
  for (const std::size_t row : selectedItems()) chosen.push_back(m_items.identity(row));
  m_items.sort(sorting);
  if (chosen.size() < m_items.size()) {
    setRowState(-1, 0);
    for (const std::size_t item : m_items.rowsOf(chosen)) selectItem(item, LVIS_SELECTED);
  }
  showArrow();
  InvalidateRect(m_list, nullptr, FALSE);
}

void ListPane::setLook(const PaneLook& look) {
  setWidths(m_list, m_dpi, look.widths, kItemColumns);
  setSorting(look.sorting);
}

PaneLook ListPane::look() const {
  PaneLook look{{}, m_items.sorting()};
  getWidths(m_list, m_dpi, look.widths);
  return look;
}

void ListPane::showArrow() const {
  const auto header = reinterpret_cast<HWND>(SendMessageW(m_list, LVM_GETHEADER, 0, 0));
  const Sorting sorting = m_items.sorting();
  for (std::size_t i = 0; i < kColumns; ++i) {
    HDITEMW item{};
    item.mask = HDI_FORMAT;
    SendMessageW(header, HDM_GETITEMW, i, reinterpret_cast<LPARAM>(&item));
    item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
    if (sorting.column == Column{static_cast<int>(i)})
      item.fmt |= sorting.isDescending ? HDF_SORTDOWN : HDF_SORTUP;
    SendMessageW(header, HDM_SETITEMW, i, reinterpret_cast<LPARAM>(&item));
  }
}

void ListPane::editName() {
  const int above = m_hasParent ? 0 : -1;
  const auto row = SendMessageW(m_list, LVM_GETNEXTITEM, static_cast<WPARAM>(above), LVNI_SELECTED);
  if (row < 0) return;
  SetFocus(m_list);
  SendMessageW(m_list, LVM_EDITLABELW, static_cast<WPARAM>(row), 0);
}

void ListPane::editAddress() {
  SetFocus(m_address);
  SendMessageW(m_address, EM_SETSEL, 0, -1);
}

void ListPane::focusList() { SetFocus(m_list); }

// The list has rows of a longer folder still while another one comes into it.
std::vector<std::size_t> ListPane::selectedItems() const {
  std::vector<std::size_t> items = selectedRows(m_list, rowOf(0) - 1);
  for (std::size_t& row : items) row -= static_cast<std::size_t>(rowOf(0));
  std::erase_if(items, [this](std::size_t item) { return item >= m_items.size(); });
  return items;
}

bool ListPane::isSelected(int row) const {
  return SendMessageW(m_list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) != 0;
}

bool ListPane::isParentSelected() const { return m_hasParent && isSelected(0) && selectedCount() == 0; }

const Item* ListPane::itemAt(int row) const {
  const int item = row - rowOf(0);
  return item >= 0 && static_cast<std::size_t>(item) < m_items.size()
             ? &m_items[static_cast<std::size_t>(item)]
             : nullptr;
}

std::vector<Item> ListPane::selected() const {
  std::vector<Item> items;
  for (const std::size_t row : selectedItems()) items.push_back(m_items[row]);
  return items;
}

bool ListPane::isFolderSelected() const {
  const std::vector<std::size_t> rows = selectedItems();
  return rows.size() == 1 && m_items[rows.front()].isFolder;
}

int ListPane::selectedCount() const {
  const auto rows = static_cast<int>(SendMessageW(m_list, LVM_GETSELECTEDCOUNT, 0, 0));
  return rows - (m_hasParent && isSelected(0) ? 1 : 0);
}

std::wstring ListPane::folderAt(POINT screen) const {
  LVHITTESTINFO hit{};
  hit.pt = screen;
  ScreenToClient(m_list, &hit.pt);
  const auto row = static_cast<int>(SendMessageW(m_list, LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
  std::wstring above = isParent(row) ? parentOn(m_side, m_path) : std::wstring();
  if (!above.empty()) return above;  // nothing can be among the drives
  const Item* const item = itemAt(row);
  return item != nullptr && item->isFolder ? pathOn(m_side, m_path, item->name) : m_path;
}

bool ListPane::owns(HWND control) const {
  return control == m_list || control == m_address || control == m_up || IsChild(m_list, control) != 0;
}

}  // namespace browse
