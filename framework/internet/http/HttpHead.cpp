// SPDX-License-Identifier: MIT
#include "framework/internet/http/HttpHead.h"

#include <algorithm>

#include "framework/internet/net/InternetLimits.h"
#include "framework/text/AsciiText.h"

namespace internet {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

constexpr bool isBlank(char c) noexcept { return c == ' ' || c == '\t'; }

std::string_view withoutBlanks(std::string_view text) noexcept {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

// "HTTP/1.x ddd", then a blank and a reason or nothing; 0 when it is no such line.
int statusOf(std::string_view line) noexcept {
  constexpr std::string_view kVersion = "HTTP/1.";
  constexpr std::size_t kCodeAt = 9;
  constexpr std::size_t kCodeEnd = 12;
  if (!line.starts_with(kVersion) || line.size() < kCodeEnd) return 0;
  int status = 0;
  const bool wellFormed = ascii::isDigit(line[kVersion.size()]) && line[kCodeAt - 1] == ' ' &&
                          ascii::readNumber(line.substr(kCodeAt, kCodeEnd - kCodeAt), status) &&
                          (line.size() == kCodeEnd || line[kCodeEnd] == ' ');
  return wellFormed && status >= 100 ? status : 0;
}

// Calls use(name, value) for each header line, lines that continue another one joined to it, until one call
// is false. Lines without a colon are skipped.
template <class Use>
bool forEachField(std::string_view raw, Use use) {
  std::string field;
  const auto finish = [&] {
    const auto colon = field.find(':');
    if (colon == std::string_view::npos) return true;
    return use(std::string_view(field).substr(0, colon),
               withoutBlanks(std::string_view(field).substr(colon + 1)));
  };
  raw.remove_prefix(raw.find(kLineEnd) + kLineEnd.size());
  while (!raw.empty()) {
    const std::string_view line = raw.substr(0, raw.find(kLineEnd));
    raw.remove_prefix(line.size() + kLineEnd.size());
    if (!line.empty() && isBlank(line.front())) {
      field.append(1, ' ').append(withoutBlanks(line));
      continue;
    }
    if (!finish()) return false;
    field = line;
  }
  return finish();
}

// A length may be told several times, in one field or in more, if it is the same each time.
bool acceptLength(std::string_view value, std::optional<std::uint64_t>& length) noexcept {
  for (;;) {
    const auto comma = std::min(value.find(','), value.size());
    std::uint64_t number = 0;
    if (!ascii::readNumber(withoutBlanks(value.substr(0, comma)), number) ||
        length.value_or(number) != number)
      return false;
    length = number;
    if (comma == value.size()) return true;
    value.remove_prefix(comma + 1);
  }
}

// Any other coding than chunks was not asked for and would end up in the local file.
bool acceptCoding(std::string_view value, bool& chunked) noexcept {
  if (ascii::equalBlindToCase(value, "identity")) return true;
  if (chunked || !ascii::equalBlindToCase(value, "chunked")) return false;
  chunked = true;
  return true;
}

bool readFraming(HttpHead& head) {
  return forEachField(head.raw, [&head](std::string_view name, std::string_view value) {
    if (ascii::equalBlindToCase(name, "Content-Length")) return acceptLength(value, head.length);
    if (ascii::equalBlindToCase(name, "Transfer-Encoding")) return acceptCoding(value, head.chunked);
    return true;
  });
}

}  // namespace

std::size_t HttpHeadReader::feed(std::string_view bytes) {
  std::size_t used = 0;
  while (state_ == State::reading && used < bytes.size()) {
    const std::string_view rest = bytes.substr(used);
    const auto end = rest.find('\n');
    const bool ended = end != std::string_view::npos;
    const std::string_view part = rest.substr(0, end);
    const std::size_t count = part.size() + (ended ? 1 : 0);
    used += count;
    taken_ += count;
    if (taken_ > kMaxHttpHead || line_.size() + part.size() > kMaxHttpHeadLine) {
      state_ = State::invalid;
    } else {
      line_ += part;
      if (ended) state_ = acceptLine(line_);
      if (ended) line_.clear();
    }
  }
  return used;
}

HttpHeadReader::State HttpHeadReader::acceptLine(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  if (line.find('\0') != std::string_view::npos) return State::invalid;
  if (head_.status == 0) {
    if (line.empty()) return State::reading;  // some servers end what came before with one line too many
    head_.status = statusOf(line);
    if (head_.status == 0) return State::invalid;
  }
  head_.raw.append(line).append(kLineEnd);
  return line.empty() ? endOfHead() : State::reading;
}

HttpHeadReader::State HttpHeadReader::endOfHead() {
  constexpr int kSwitchingProtocols = 101;
  if (head_.status == kSwitchingProtocols) return State::invalid;
  if (head_.status < 200) {
    head_ = {};
    return State::reading;
  }
  return readFraming(head_) ? State::complete : State::invalid;
}

}  // namespace internet
