// SPDX-License-Identifier: MIT
// The queue as a list: what comes from where, how far it is, and what has become of it. It asks for the rows
// that it shows, and draws again what has changed, ten times a second at most. On the window's thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hosts/qxbrowse/jobs/TransferQueue.h"
#include "hosts/qxbrowse/pane/QueueColumns.h"
#include "hosts/qxbrowse/ui/Dpi.h"

namespace browse {

// What a row shows in a column.
std::wstring queueCell(const TransferRow& row, QueueColumn column);
// How much of the progress cell is filled, of 100; none: that is not known.
std::optional<int> percentOf(const TransferRow& row);

class QueuePane {
 public:
  // Tries transfers of the queue again.
  using Retry = std::function<void(std::vector<Transfer> transfers)>;

  // `parent` gives notifications and WM_TIMER to onNotify and onTimer.
  void create(HWND parent, TransferQueue& queue, Retry retry);
  [[nodiscard]] HWND window() const { return m_list; }
  void place(const RECT& area) const;
  void setFont(UINT dpi);
  // Behind setFont().
  void setWidths(const QueueWidths& widths);
  [[nodiscard]] QueueWidths widths() const;

  // Something has changed; it is shown soon.
  void changed();
  // Shows it now.
  void update();
  void cancelSelected();
  // What failed or was cancelled of it.
  void retrySelected();
  // What can be done with what is selected; `at` as in WM_CONTEXTMENU.
  void showMenu(POINT at);

  // Nothing: it was not for this pane.
  std::optional<LRESULT> onNotify(const NMHDR& header);
  bool onTimer(UINT_PTR id);

 private:
  [[nodiscard]] std::vector<std::size_t> selectedTransfers() const;
  [[nodiscard]] bool isAnySelected(TransferState one, TransferState other) const;
  void fillIn(LVITEMW& cell);
  [[nodiscard]] LRESULT onDraw(const NMLVCUSTOMDRAW& draw) const;
  void drawBar(HDC context, const RECT& cell, const TransferRow& row) const;

  TransferQueue* m_queue = nullptr;
  Retry m_retry;
  std::wstring m_cell;
  bool m_isTimed = false;
  UINT m_dpi = kPlainDpi;
  HWND m_parent = nullptr;
  HWND m_list = nullptr;
};

}  // namespace browse
