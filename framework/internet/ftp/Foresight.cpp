// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/Foresight.h"

#include <algorithm>
#include <array>
#include <utility>

#include "framework/internet/net/InternetLimits.h"

namespace internet {

namespace {

// To another directory, or to a transfer that nobody takes.
bool movesServer(std::string_view line) noexcept {
  constexpr std::array kMoves{"CWD", "LIST", "MLSD", "RETR"};
  const std::string_view verb = line.substr(0, line.find(' '));
  return std::find(kMoves.begin(), kMoves.end(), verb) != kMoves.end();
}

}  // namespace

bool Foresight::Line::answer(const FtpReply& answer) {
  if (handler) return handler(answer);
  reply = answer;
  return true;
}

bool Foresight::add(std::string_view line) {
  if (lines_.empty()) bytes_ = 0;
  if (lines_.size() >= kMaxForeseenLines || bytes_ + line.size() > kMaxForeseenBytes) return false;
  bytes_ += line.size();
  lines_.push_back(std::make_shared<Line>(Line{.text = secret::Text(line)}));
  return true;
}

std::vector<Foresight::LinePtr> Foresight::takeUnsent() {
  std::vector<LinePtr> unsent;
  for (const LinePtr& line : lines_) {
    if (!std::exchange(line->sent, true)) unsent.push_back(line);
  }
  return unsent;
}

bool Foresight::holds(std::string_view line) const noexcept {
  return !lines_.empty() && lines_.front()->sent && lines_.front()->text.view() == line;
}

Foresight::LinePtr Foresight::take(std::string_view line) {
  if (lines_.empty()) return nullptr;
  if (lines_.front()->text.view() != line) {
    forget();
    return nullptr;
  }
  LinePtr next = std::move(lines_.front());
  lines_.pop_front();
  return next->sent ? next : nullptr;
}

void Foresight::forget() noexcept {
  for (const LinePtr& line : lines_) astray_ = astray_ || (line->sent && movesServer(line->text.view()));
  lines_.clear();
}

void Foresight::clear() noexcept {
  lines_.clear();
  astray_ = false;
}

}  // namespace internet
