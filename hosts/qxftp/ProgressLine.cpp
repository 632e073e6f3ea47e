// SPDX-License-Identifier: MIT
#include "hosts/qxftp/ProgressLine.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "hosts/qxftp/Printable.h"

namespace qxftp {
namespace {

constexpr std::size_t kLeastBar = 10;
constexpr std::size_t kMostBar = 40;
constexpr std::size_t kLeastName = 12;

// Where characters begin: bytes that continue none.
bool begins(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }

// East Asian characters and pictures take two columns; those that only change the one before take none.
std::size_t widthOf(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  if (first == 0xCC || (first == 0xCD && static_cast<unsigned char>(character[1]) < 0xB0)) return 0;
  const bool isWide = first >= 0xE3 && first <= 0xED && !(first == 0xEA && character[1] < '\x9f');
  return isWide || first >= 0xF0 ? 2 : 1;
}

std::vector<std::string_view> charactersOf(std::string_view text) {
  std::vector<std::string_view> characters;
  while (!text.empty()) {
    std::size_t size = 1;
    while (size < text.size() && !begins(text[size])) ++size;
    characters.push_back(text.substr(0, size));
    text.remove_prefix(size);
  }
  return characters;
}

// From the beginning of the range, as many as have room.
template <typename Range>
std::vector<std::string_view> fitting(const Range& characters, std::size_t columns) {
  std::vector<std::string_view> taken;
  for (const std::string_view character : characters) {
    if (widthOf(character) > columns) break;
    columns -= widthOf(character);
    taken.push_back(character);
  }
  return taken;
}

std::string bar(unsigned percent, std::size_t columns) {
  const std::size_t inside = columns - 2;
  const std::size_t full = inside * percent / 100;
  std::string text(full, '=');
  if (full < inside) text += '>';
  text.resize(inside, ' ');
  return "[" + text + "]";
}

std::string padded(const std::string& text, std::size_t width) {
  return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

std::string percentText(const hosts::Amount& amount) {
  return amount.percent() ? padded(std::to_string(*amount.percent()) + "%", 4) : "";
}

std::string figuresText(const hosts::Amount& amount, double rate) {
  std::string text = "  " + padded(bytesText(amount.done), 10);
  text += "  " + padded(bytesText(static_cast<std::uint64_t>(rate)) + "/s", 11);
  return text + "  " + (amount.left ? padded(durationText(*amount.left), 7) : padded("-:--", 7));
}

std::string numberText(const hosts::ProgressFigures& figures) {
  if (figures.filesInAll <= 1) return {};
  return std::to_string(figures.filesDone) + "/" + std::to_string(figures.filesInAll) + " ";
}

}  // namespace

std::string bytesText(std::uint64_t bytes) {
  static constexpr std::array kUnits = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  if (bytes < 1024) return std::to_string(bytes) + " B";
  auto value = static_cast<double>(bytes) / 1024;
  std::size_t unit = 0;
  for (; value >= 1024 && unit + 1 < kUnits.size(); ++unit) value /= 1024;
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f %s", value, kUnits[unit]);
  return text.data();
}

std::string durationText(std::chrono::seconds duration) {
  const long long seconds = duration.count();
  std::array<char, 48> text{};
  if (seconds < 3600) {
    std::snprintf(text.data(), text.size(), "%lld:%02lld", seconds / 60, seconds % 60);
  } else {
    std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld", seconds / 3600, seconds / 60 % 60,
                  seconds % 60);
  }
  return text.data();
}

std::size_t columnsOf(std::string_view text) {
  std::size_t columns = 0;
  for (const std::string_view character : charactersOf(text)) columns += widthOf(character);
  return columns;
}

std::string shortened(const std::string& text, std::size_t columns) {
  if (columnsOf(text) <= columns) return text;
  if (columns < 5) return std::string(columns, '.');
  auto characters = charactersOf(text);
  std::string head;
  for (const auto character : fitting(characters, (columns - 3 + 1) / 2)) head += character;
  std::ranges::reverse(characters);
  auto tail = fitting(characters, (columns - 3) / 2);
  std::ranges::reverse(tail);
  head += "...";
  for (const auto character : tail) head += character;
  return head;
}

std::string progressLine(const hosts::ProgressFigures& figures, std::size_t columns) {
  const bool isOne = figures.filesInAll <= 1;
  const hosts::Amount& amount = isOne ? figures.file : figures.total;
  const std::string percent = percentText(amount);
  const std::string right = figuresText(amount, figures.rate);
  const std::size_t taken = percent.size() + right.size() + 1;
  if (columns <= taken) return (percent + right).substr(0, columns);
  const std::size_t room = columns - taken;
  const bool hasBar = !percent.empty() && room >= kLeastName + kLeastBar;
  const std::size_t barRoom = hasBar ? std::clamp(room / 3, kLeastBar, kMostBar) : 0;
  std::string head = shortened(numberText(figures) + printable(figures.name), room - barRoom);
  head.append(room - barRoom - columnsOf(head), ' ');  // so that nothing moves with the name
  return head + " " + percent + (hasBar ? " " + bar(*amount.percent(), barRoom - 1) : "") + right;
}

}  // namespace qxftp
