// SPDX-License-Identifier: MIT
// What stands below the two sides: the queue, the messages with their errors, and the protocol, behind tabs.
#pragma once

#include <string>
#include <vector>

#include "hosts/qxbrowse/pane/LinesPane.h"
#include "hosts/qxbrowse/pane/QueuePane.h"
#include "hosts/qxbrowse/window/MainWindow.h"

namespace browse {

class WorkPane {
 public:
  enum class Tab { queue, reports, protocol };

  WorkPane() = default;
  WorkPane(const WorkPane&) = delete;
  WorkPane& operator=(const WorkPane&) = delete;

  // The windows go with `parent`; this has to outlive them. For MainWindow::setBottomPane.
  BottomPane create(HWND parent, TransferQueue& queue, QueuePane::Retry retry);

  // Of the queue's events.
  void queueChanged() { m_queue.changed(); }
  // Lines as the library has them.
  void report(std::vector<std::string> lines) { m_reports.add(std::move(lines)); }
  void tellProtocol(std::vector<std::string> lines) { m_protocol.add(std::move(lines)); }
  void show(Tab tab);
  // Of the queue's columns. Behind the pane's first setFont.
  void setWidths(const QueueWidths& widths) { m_queue.setWidths(widths); }

  // Keys in this pane mean nothing to the two sides: of what is selected in the queue, Del cancels what waits
  // or runs, and Enter tries again what failed. Whether it was such a key.
  bool takeKey(const MSG& key);

  [[nodiscard]] HWND window() const { return m_window; }
  [[nodiscard]] const QueuePane& queue() const { return m_queue; }
  [[nodiscard]] const LinesPane& reports() const { return m_reports; }
  [[nodiscard]] const LinesPane& protocol() const { return m_protocol; }

 private:
  static LRESULT CALLBACK handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT onNotify(const NMHDR& header);
  void makeWindow(HWND parent);
  void makeTabs();
  void setFont(HFONT font, UINT dpi);
  void layOut() const;
  void showSelected() const;
  [[nodiscard]] Tab selected() const;
  [[nodiscard]] HWND windowOf(Tab tab) const;

  QueuePane m_queue;
  LinesPane m_reports;
  LinesPane m_protocol;
  HWND m_window = nullptr;
  HWND m_tabs = nullptr;
};

}  // namespace browse
