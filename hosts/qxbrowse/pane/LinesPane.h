// SPDX-License-Identifier: MIT
// A list of lines, of which the last ones are kept. It asks for those that it shows, so their number costs
// nothing. On the window's thread.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

class LinesPane {
 public:
  static constexpr std::size_t kMostLines = 5000;

  void create(HWND parent, const wchar_t* title);
  [[nodiscard]] HWND window() const { return m_list; }
  void place(const RECT& area) const;

  // Texts as the library has them. Scrolls to the end, unless the user has scrolled away from it.
  void add(std::vector<std::string> lines);
  [[nodiscard]] std::size_t size() const { return m_lines.size(); }

  // Of the parent: whether the notification was for this pane.
  bool onNotify(const NMHDR& header);

 private:
  [[nodiscard]] bool isAtEnd() const;
  void copySelected() const;

  std::deque<std::string> m_lines;
  std::wstring m_cell;  // what the list shows just now, until it asks for the next
  HWND m_list = nullptr;
};

}  // namespace browse
