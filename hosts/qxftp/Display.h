// SPDX-License-Identifier: MIT
// Shows progress while files move: a line of the terminal on the standard error output, nothing elsewhere.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "hosts/shared/TransferProgress.h"

namespace qxftp {

// The line itself: drawn over and over, taken away before anything else is written.
class TerminalLine {
 public:
  using Columns = std::function<std::size_t()>;

  // `columns` is asked for each drawing; 0: there is no terminal, and nothing is written.
  explicit TerminalLine(Columns columns) : m_columns(std::move(columns)) {}
  ~TerminalLine() { clear(); }
  TerminalLine(const TerminalLine&) = delete;
  TerminalLine& operator=(const TerminalLine&) = delete;

  // `text` gives what has to be shown in so many columns.
  void draw(const std::function<std::string(std::size_t columns)>& text);
  void clear();

 private:
  const Columns m_columns;
  bool m_isDrawn = false;
};

class Display {
 public:
  using Clock = std::chrono::steady_clock;

  Display(bool isWanted, std::uint64_t files, std::optional<std::uint64_t> bytes);

  void begin(const std::string& name, std::optional<std::uint64_t> size);
  // Asked thousands of times a second; draws ten times at most.
  void moved(std::uint64_t bytes);
  // Leaves no line behind, so that something can be said about the file.
  void end(bool isDone);

  // "12 files, 4.5 MiB in 0:03 (1.5 MiB/s)", where progress was shown.
  void sum();

 private:
  void draw(Clock::time_point now);

  hosts::TransferProgress m_progress;
  TerminalLine m_line;
  const bool m_isWanted;
  const Clock::time_point m_begun = Clock::now();
  std::optional<Clock::time_point> m_drawn;
  std::uint64_t m_done = 0;
};

}  // namespace qxftp
