// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/pane/QueuePane.h"

#include <algorithm>
#include <array>

#include "hosts/qxbrowse/lists/Formats.h"
#include "hosts/qxbrowse/ui/ListView.h"
#include "hosts/qxbrowse/ui/MenuPlace.h"
#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/qxbrowse/ui/Texts.h"

namespace browse {
namespace {

constexpr std::array<ListColumn, kQueueColumns> kQueueList = {{
    {Text::columnName, 200, LVCFMT_LEFT},
    {Text::queueDirection, 80, LVCFMT_LEFT},
    {Text::columnSize, 80, LVCFMT_RIGHT},
    {Text::queueProgress, 110, LVCFMT_CENTER},
    {Text::queueRate, 80, LVCFMT_RIGHT},
    {Text::queueLeft, 70, LVCFMT_RIGHT},
    {Text::queueState, 320, LVCFMT_LEFT},
}};

constexpr DWORD kQueueStyle = WS_CHILD | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS;
constexpr DWORD kExtendedStyle = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER;
constexpr UINT_PTR kTimer = 1;
constexpr UINT kBetweenDrawings = 100;  // ms
constexpr int kRetry = 1;               // in the menu
constexpr int kCancel = 2;

void appendEntry(HMENU menu, int id, Text title, Text key, bool isPossible) {
  const std::wstring words = std::wstring(text(title)) + L'\t' + text(key);
  const UINT state = isPossible ? MF_ENABLED : MF_GRAYED;
  AppendMenuW(menu, MF_STRING | state, static_cast<UINT_PTR>(id), words.c_str());
}

std::wstring nameOf(const Transfer& transfer) {
  return lastPart(transfer.direction == Direction::upload ? transfer.local.wstring()
                                                          : fromLibrary(transfer.remote.path));
}

std::wstring directionOf(Direction direction) {
  switch (direction) {
    case Direction::upload:
      return text(Text::queueUpload);
    case Direction::copy:
      return text(Text::queueCopy);
    case Direction::download:
      break;
  }
  return text(Text::queueDownload);
}

std::wstring stateOf(const TransferRow& row) {
  switch (row.state) {
    case TransferState::waiting:
      return text(Text::queueWaiting);
    case TransferState::running:
      return text(Text::queueRunning);
    case TransferState::done:
      return text(Text::queueDone);
    case TransferState::failed:
      return text(Text::queueFailed, {fromLibrary(row.text)});
    case TransferState::cancelled:
      break;
  }
  return row.text.empty() ? text(Text::queueCancelled) : fromLibrary(row.text);
}

std::wstring timeLeft(const TransferRow& row) {
  if (row.state != TransferState::running || !row.progress.left) return {};
  const auto seconds = row.progress.left->count();
  return text(Text::queueTime,
              {std::to_wstring(seconds / 60), std::to_wstring(seconds % 60 + 100).substr(1)});
}

std::wstring progressOf(const TransferRow& row) {
  if (const auto percent = percentOf(row)) return text(Text::queuePercent, {std::to_wstring(*percent)});
  return row.progress.moved ? sizeText(*row.progress.moved) : std::wstring();
}

}  // namespace

std::optional<int> percentOf(const TransferRow& row) {
  if (row.state == TransferState::done) return 100;
  if (!row.progress.moved || row.transfer.size.value_or(0) == 0) return {};
  const double share = static_cast<double>(*row.progress.moved) / static_cast<double>(*row.transfer.size);
  return static_cast<int>(std::min(share, 1.0) * 100);
}

std::wstring queueCell(const TransferRow& row, QueueColumn column) {
  switch (column) {
    case QueueColumn::name:
      return nameOf(row.transfer);
    case QueueColumn::direction:
      return directionOf(row.transfer.direction);
    case QueueColumn::size:
      return row.transfer.size ? sizeText(*row.transfer.size) : std::wstring();
    case QueueColumn::progress:
      return progressOf(row);
    case QueueColumn::rate:
      if (row.state != TransferState::running || row.progress.rate < 1) return {};
      return text(Text::queuePerSecond, {sizeText(static_cast<std::uint64_t>(row.progress.rate))});
    case QueueColumn::left:
      return timeLeft(row);
    case QueueColumn::state:
      break;
  }
  return stateOf(row);
}

void QueuePane::create(HWND parent, TransferQueue& queue, Retry retry) {
  m_parent = parent;
  m_queue = &queue;
  m_retry = std::move(retry);
  m_list = CreateWindowExW(0, WC_LISTVIEWW, text(Text::queueList), kQueueStyle, 0, 0, 0, 0, parent, nullptr,
                           GetModuleHandleW(nullptr), nullptr);
  SendMessageW(m_list, LVM_SETEXTENDEDLISTVIEWSTYLE, kExtendedStyle, kExtendedStyle);
  insertColumns(m_list, kQueueList);
  update();
}

void QueuePane::place(const RECT& area) const {
  MoveWindow(m_list, area.left, area.top, area.right - area.left, area.bottom - area.top, TRUE);
}

void QueuePane::setFont(UINT dpi) {
  scaleColumns(m_list, m_dpi, dpi);
  m_dpi = dpi;
}

void QueuePane::setWidths(const QueueWidths& widths) { browse::setWidths(m_list, m_dpi, widths, kQueueList); }

QueueWidths QueuePane::widths() const {
  QueueWidths widths{};
  getWidths(m_list, m_dpi, widths);
  return widths;
}

void QueuePane::changed() {
  if (!m_isTimed) m_isTimed = SetTimer(m_parent, kTimer, kBetweenDrawings, nullptr) != 0;
}

bool QueuePane::onTimer(UINT_PTR id) {
  if (id != kTimer) return false;
  KillTimer(m_parent, kTimer);
  m_isTimed = false;
  update();
  return true;
}

void QueuePane::update() {
  const TransferList::Changes changes = m_queue->takeChanges();
  if (changes.isAll) {
    SendMessageW(m_list, LVM_SETITEMCOUNT, m_queue->list().size(), LVSICF_NOSCROLL);
    return;
  }
  for (const std::size_t row : changes.rows)
    SendMessageW(m_list, LVM_REDRAWITEMS, row, static_cast<LPARAM>(row));
}

std::vector<std::size_t> QueuePane::selectedTransfers() const {
  std::vector<std::size_t> rows = selectedRows(m_list);
  std::erase_if(rows, [this](std::size_t row) { return row >= m_queue->list().size(); });
  return rows;
}

bool QueuePane::isAnySelected(TransferState one, TransferState other) const {
  return std::ranges::any_of(selectedTransfers(), [&](std::size_t row) {
    const TransferState state = m_queue->list()[row].state;
    return state == one || state == other;
  });
}

void QueuePane::cancelSelected() {
  for (const std::size_t row : selectedTransfers()) m_queue->cancel(row);
}

void QueuePane::retrySelected() {
  std::vector<Transfer> transfers;
  for (const std::size_t row : selectedTransfers()) {
    if (m_queue->list().isEnded(row)) transfers.push_back(m_queue->list()[row].transfer);
  }
  if (!transfers.empty()) m_retry(std::move(transfers));
}

void QueuePane::showMenu(POINT at) {
  const POINT place = menuPlace(m_list, at);
  const HMENU menu = CreatePopupMenu();
  appendEntry(menu, kRetry, Text::queueRetry, Text::keyEnter,
              isAnySelected(TransferState::failed, TransferState::cancelled));
  appendEntry(menu, kCancel, Text::commandCancel, Text::keyDelete,
              isAnySelected(TransferState::waiting, TransferState::running));
  const int chosen =
      TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x, place.y, 0, m_parent, nullptr);
  DestroyMenu(menu);
  if (chosen == kRetry) retrySelected();
  if (chosen == kCancel) cancelSelected();
}

std::optional<LRESULT> QueuePane::onNotify(const NMHDR& header) {
  if (header.hwndFrom != m_list) return {};
  if (header.code == LVN_GETDISPINFOW)
    fillIn(reinterpret_cast<NMLVDISPINFOW&>(const_cast<NMHDR&>(header)).item);
  if (header.code == NM_CUSTOMDRAW) return onDraw(reinterpret_cast<const NMLVCUSTOMDRAW&>(header));
  return 0;
}

void QueuePane::fillIn(LVITEMW& cell) {
  const auto row = static_cast<std::size_t>(cell.iItem);
  if ((cell.mask & LVIF_TEXT) == 0 || row >= m_queue->list().size()) return;
  m_cell = queueCell(m_queue->list()[row], static_cast<QueueColumn>(cell.iSubItem));
  cell.pszText = m_cell.data();
}

// The cells of the progress alone are drawn here.
LRESULT QueuePane::onDraw(const NMLVCUSTOMDRAW& draw) const {
  if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
  if (draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT) return CDRF_NOTIFYSUBITEMDRAW;
  const auto row = static_cast<std::size_t>(draw.nmcd.dwItemSpec);
  const bool isBar = draw.nmcd.dwDrawStage == (CDDS_ITEMPREPAINT | CDDS_SUBITEM) &&
                     draw.iSubItem == static_cast<int>(QueueColumn::progress);
  if (!isBar || row >= m_queue->list().size()) return CDRF_DODEFAULT;
  RECT cell{LVIR_BOUNDS, draw.iSubItem, 0, 0};
  SendMessageW(m_list, LVM_GETSUBITEMRECT, row, reinterpret_cast<LPARAM>(&cell));
  drawBar(draw.nmcd.hdc, cell, m_queue->list()[row]);
  return CDRF_SKIPDEFAULT;
}

void QueuePane::drawBar(HDC context, const RECT& cell, const TransferRow& row) const {
  FillRect(context, &cell, GetSysColorBrush(COLOR_WINDOW));
  RECT bar{cell.left + 2, cell.top + 2, cell.right - 2, cell.bottom - 2};
  FrameRect(context, &bar, GetSysColorBrush(COLOR_BTNSHADOW));
  RECT filled = bar;
  filled.right = bar.left + (bar.right - bar.left) * percentOf(row).value_or(0) / 100;
  FillRect(context, &filled, GetSysColorBrush(COLOR_HIGHLIGHT));
  std::wstring words = progressOf(row);
  const auto length = static_cast<int>(words.size());
  SetBkMode(context, TRANSPARENT);
  const auto drawWords = [&](const RECT& clip, int colour) {
    const int saved = SaveDC(context);
    IntersectClipRect(context, clip.left, clip.top, clip.right, clip.bottom);
    SetTextColor(context, GetSysColor(colour));
    DrawTextW(context, words.data(), length, &bar, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    RestoreDC(context, saved);
  };
  drawWords(filled, COLOR_HIGHLIGHTTEXT);
  drawWords({filled.right, bar.top, bar.right, bar.bottom}, COLOR_WINDOWTEXT);
}

}  // namespace browse
