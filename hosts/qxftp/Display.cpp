// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Display.h"

#include <cstdio>

#include "hosts/qxftp/ProgressLine.h"
#include "hosts/shared/Terminal.h"

namespace qxftp {
namespace {

constexpr std::chrono::milliseconds kBetweenDrawings{100};

}  // namespace

void TerminalLine::draw(const std::function<std::string(std::size_t columns)>& text) {
  const std::size_t columns = m_columns();
  if (columns < 2) return;
  // The last column would wrap on some. What the line before was longer is blank.
  std::string line = text(columns - 1);
  line.append(columns - 1 - std::min(columns - 1, columnsOf(line)), ' ');
  std::fprintf(stderr, "\r%s", line.c_str());
  std::fflush(stderr);
  m_isDrawn = true;
}

void TerminalLine::clear() {
  if (!m_isDrawn) return;
  const std::size_t columns = m_columns();
  std::fprintf(stderr, "\r%s\r", std::string(columns < 2 ? 0 : columns - 1, ' ').c_str());
  std::fflush(stderr);
  m_isDrawn = false;
}

Display::Display(bool isWanted, std::uint64_t files, std::optional<std::uint64_t> bytes)
    : m_progress(files, bytes),
      m_line(isWanted ? hosts::columnsOfErrorOutput : [] { return std::size_t{0}; }),
      m_isWanted(isWanted && hosts::columnsOfErrorOutput() > 0) {}

void Display::begin(const std::string& name, std::optional<std::uint64_t> size) {
  m_progress.begin(name, size, Clock::now());
  moved(0);
}

void Display::moved(std::uint64_t bytes) {
  const auto now = Clock::now();
  m_progress.moved(bytes, now);
  if (m_isWanted && (!m_drawn || now - *m_drawn >= kBetweenDrawings)) draw(now);
}

void Display::draw(Clock::time_point now) {
  m_drawn = now;
  m_line.draw([&](std::size_t columns) { return progressLine(m_progress.at(now), columns); });
}

void Display::end(bool isDone) {
  m_progress.end(isDone, Clock::now());
  if (isDone) ++m_done;
  if (!isDone) m_line.clear();
}

void Display::sum() {
  if (!m_isWanted) return;
  m_line.clear();
  const auto passed = Clock::now() - m_begun;
  const std::uint64_t bytes = m_progress.at(Clock::now()).total.done;
  const double seconds = std::max(0.001, std::chrono::duration<double>(passed).count());
  std::fprintf(stderr, "%llu %s, %s in %s (%s/s)\n", static_cast<unsigned long long>(m_done),
               m_done == 1 ? "file" : "files", bytesText(bytes).c_str(),
               durationText(std::chrono::floor<std::chrono::seconds>(passed)).c_str(),
               bytesText(static_cast<std::uint64_t>(static_cast<double>(bytes) / seconds)).c_str());
}

}  // namespace qxftp
