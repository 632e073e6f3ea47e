// SPDX-License-Identifier: MIT
#include "dialogs/XFileDialog.h"

#include <atomic>
#include <cstring>
#include <iterator>

#include "dialogs/ExistingPath.h"
#include "dialogs/FileDialogLayout.h"
#include "dialogs/Rectangles.h"
#include "dialogs/SystemControls.h"
#include "dialogs/SystemGeneration.h"
#include "framework/ui/DataExchange.h"
#include "framework/ui/NarrowText.h"

namespace {

constexpr int kHistoryLabel = 1001;
constexpr int kHistoryBox = 1002;

constexpr LONG kColumnWithoutNameBox = 90;
constexpr LONG kOldLayoutIndent = 8;

constexpr std::size_t kNameTextCapacity = 520;  // with the terminator

struct Place {
  int id;
  RECT FileDialogLayout::*rect;
};
constexpr Place kPlaces[] = {
    {kFileNameLabel, &FileDialogLayout::nameLabel}, {kFileNameBox, &FileDialogLayout::nameBox},
    {kFileTypeLabel, &FileDialogLayout::typeLabel}, {kFileTypeBox, &FileDialogLayout::typeBox},
    {kReadOnlyBox, &FileDialogLayout::readOnlyBox}, {kHistoryLabel, &FileDialogLayout::historyLabel},
    {kHistoryBox, &FileDialogLayout::historyBox}};

// Of all dialogs since the module was loaded.
std::atomic<bool> g_resized{false};

// `rect` in the co-ordinates of `dialog`, which need not be the window's parent.
void place(HWND dialog, HWND window, RECT rect) {
  MapWindowPoints(dialog, GetParent(window), reinterpret_cast<POINT*>(&rect), 2);
  SetWindowPos(window, nullptr, rect.left, rect.top, width(rect), height(rect),
               SWP_NOZORDER | SWP_NOACTIVATE);
}

// "C:\data\a.txt" -> "C:\data", "C:\a.txt" -> "C:", "a.txt" -> "a.txt".
std::string cutBeforeLastBackslash(const std::string& path) { return path.substr(0, findLastOf(path, "\\")); }

}  // namespace

CXFileDialog::CXFileDialog(bool open, const char* defaultExtension, const char* fileName, DWORD flags,
                           const char* filter, HWND parent)
    : CFileDialog(open, defaultExtension, fileName, flags, filter, parent, 0, true),
      m_nFlags(flags),
      m_nColumn(kColumnWithoutNameBox) {
  m_ofn.lpTemplateName = "IDD_XFILEDIALOG";
  m_ofn.Flags |= OFN_ENABLETEMPLATE;
  m_ofn.hInstance = GetModuleHandleA(nullptr);
}

int CXFileDialog::DoModal() {
  clearBehindInitialName();
  m_record = {};
  m_record.base = m_ofn;
  if (hasNewLayout()) m_record.base.lStructSize = sizeof m_record;
  struct TakeBack {
    CXFileDialog* dialog;
    ~TakeBack() { dialog->takeRecordBack(); }
  } const takeBack{this};
  return RunClassic(m_record.base);
}

bool CXFileDialog::hasNewLayout() const noexcept {
  return m_nLayoutMode == LayoutMode::newLayout ||
         (m_nLayoutMode == LayoutMode::bySystem && IsNewGeneration());
}

void CXFileDialog::clearBehindInitialName() const noexcept {
  const std::size_t length = std::strlen(m_ofn.lpstrFile);
  std::memset(m_ofn.lpstrFile + length, 0, m_ofn.nMaxFile - length);
}

void CXFileDialog::takeRecordBack() noexcept {
  m_ofn = m_record.base;
  m_ofn.lStructSize = sizeof m_ofn;
}

bool CXFileDialog::OnInitDialog() {
  CFileDialog::OnInitDialog();
  m_wndHistory.SetOnlyExisting(true);
  m_wndHistory.LoadHistoryList("FolderHistory", "Folder");
  if (m_wndHistory.GetCount() > 0) m_wndHistory.SetWindowText(m_wndHistory.GetLBText(0).c_str());
  m_nColumn = findColumn();
  if (!m_strTitle.empty()) SetWindowTextA(GetParent(), m_strTitle.c_str());
  return true;
}

int CXFileDialog::OnFileNameOK() {
  const std::string folder = cutBeforeLastBackslash(GetPathName());
  m_wndHistory.AddHistoryItem(folder.c_str());
  m_wndHistory.SetWindowText(folder.c_str());
  m_wndHistory.SaveHistoryList(true);
  return CFileDialog::OnFileNameOK();
}

void CXFileDialog::DoDataExchange(CDataExchange* exchange) {
  CFileDialog::DoDataExchange(exchange);
  DDX_Control(exchange, kHistoryBox, m_wndHistory);
}

LRESULT CXFileDialog::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  const LRESULT result = CFileDialog::WindowProc(message, wParam, lParam);
  if (message == WM_SIZE) {
    arrangeControls();
    moveFocus();
  }
  return result;
}

bool CXFileDialog::OnCommand(WPARAM wParam, LPARAM lParam) {
  if (LOWORD(wParam) != kHistoryBox || HIWORD(wParam) != CBN_SELENDOK)
    return CFileDialog::OnCommand(wParam, lParam);
  goToPickedFolder();
  return true;
}

bool CXFileDialog::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result) {
  // The system's dialog knows m_record alone, the handlers read m_ofn.
  takeRecordBack();
  return CFileDialog::OnNotify(wParam, lParam, result);
}

int CXFileDialog::nameBoxId() const noexcept {
  return ::GetDlgItem(GetParent(), kFileNameBox) != nullptr ? kFileNameBox : kFileNameEdit;
}

// A control of the template, or else one of the system's.
HWND CXFileDialog::control(int id) const noexcept {
  const HWND own = GetDlgItem(id);
  return own != nullptr ? own : ::GetDlgItem(GetParent(), id == kFileNameBox ? nameBoxId() : id);
}

LONG CXFileDialog::findColumn() const noexcept {
  const HWND box = control(kFileNameBox);
  if (box == nullptr) return kColumnWithoutNameBox;
  return rectOf(GetParent(), box).left + (hasNewLayout() ? 0 : kOldLayoutIndent);
}

void CXFileDialog::arrangeControls() const noexcept {
  const HWND dialog = GetParent();
  FileDialogLayout layout{};
  for (const Place& each : kPlaces) layout.*each.rect = rectOf(dialog, control(each.id));
  layout.arrange(m_nColumn);
  for (const Place& each : kPlaces) {
    const bool shown = each.id != kReadOnlyBox || (m_nFlags & OFN_HIDEREADONLY) == 0;
    if (shown) place(dialog, control(each.id), layout.*each.rect);
  }
}

// The first dialog starts in the history box, which the user is to notice; the others start with the name.
void CXFileDialog::moveFocus() const noexcept {
  if (!g_resized.exchange(true)) {
    SetFocus(m_wndHistory.m_hWnd);
  } else {
    m_wndHistory.ClearEditSel();
    SetFocus(control(kFileNameBox));
  }
}

// The dialog goes where an existing name that is typed in leads to: the entry is typed for the user, whose
// own text comes back afterwards.
void CXFileDialog::goToPickedFolder() const {
  const int item = m_wndHistory.GetCurSel();
  if (item == CB_ERR) return;
  const std::string entry = m_wndHistory.GetLBText(item);
  if (entry.empty() || !NamesExistingPath(entry)) return;

  const HWND dialog = GetParent();
  char typed[kNameTextCapacity] = "";
  GetWindowTextA(control(kFileNameBox), typed, static_cast<int>(std::size(typed)));
  setNameText(entry.c_str());
  SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED),
               reinterpret_cast<LPARAM>(::GetDlgItem(dialog, IDOK)));
  setNameText(typed);
}

void CXFileDialog::setNameText(const char* text) const noexcept {
  SendMessageA(GetParent(), CDM_SETCONTROLTEXT, static_cast<WPARAM>(nameBoxId()),
               reinterpret_cast<LPARAM>(text));
}
