// SPDX-License-Identifier: MIT
#include "framework/internet/http/HttpBody.h"

#include <algorithm>
#include <charconv>

#include "framework/internet/net/InternetLimits.h"

namespace internet {

HttpBody::HttpBody(const HttpHead& head) noexcept {
  constexpr int kNoContent = 204;
  constexpr int kNotModified = 304;
  if (head.status == kNoContent || head.status == kNotModified) {
    state_ = State::complete;
  } else if (head.chunked) {
    state_ = State::chunkSize;
  } else if (head.length) {
    left_ = *head.length;
    state_ = left_ > 0 ? State::sized : State::complete;
  }
}

bool HttpBody::feed(std::string_view wire, std::string& content) {
  while (!wire.empty()) {
    switch (state_) {
      case State::untilClose:
        content += wire;
        return true;
      case State::sized:
      case State::chunkData:
        takeData(wire, content);
        break;
      case State::chunkSize:
      case State::chunkEnd:
      case State::trailer:
        if (!takeLine(wire)) return false;
        break;
      case State::complete:
        return true;
    }
  }
  return true;
}

bool HttpBody::endOfStream() noexcept {
  if (state_ == State::untilClose) state_ = State::complete;
  return complete();
}

void HttpBody::takeData(std::string_view& wire, std::string& content) {
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left_, wire.size()));
  content += wire.substr(0, count);
  wire.remove_prefix(count);
  left_ -= count;
  if (left_ == 0) state_ = state_ == State::sized ? State::complete : State::chunkEnd;
}

bool HttpBody::takeLine(std::string_view& wire) {
  const auto end = wire.find('\n');
  const std::string_view part = wire.substr(0, end);
  if (line_.size() + part.size() > kMaxHttpChunkLine) return false;
  line_ += part;
  wire.remove_prefix(part.size());
  if (end == std::string_view::npos) return true;
  wire.remove_prefix(1);
  if (line_.ends_with('\r')) line_.pop_back();
  const bool accepted = acceptLine(line_);
  line_.clear();
  return accepted;
}

bool HttpBody::acceptLine(std::string_view line) noexcept {
  if (state_ == State::chunkSize) return acceptSize(line);
  if (state_ == State::chunkEnd) {
    state_ = State::chunkSize;
    return line.empty();
  }
  trailerBytes_ += line.size() + 1;
  if (line.empty()) state_ = State::complete;
  return trailerBytes_ <= kMaxHttpHead;
}

// Hexadecimal digits, then nothing or an extension, which says nothing to us.
bool HttpBody::acceptSize(std::string_view line) noexcept {
  constexpr int kHexadecimal = 16;
  const auto [stop, error] = std::from_chars(line.data(), line.data() + line.size(), left_, kHexadecimal);
  if (error != std::errc{}) return false;
  std::string_view rest(stop, static_cast<std::size_t>(line.data() + line.size() - stop));
  rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
  if (!rest.empty() && rest.front() != ';') return false;
  state_ = left_ > 0 ? State::chunkData : State::trailer;
  return true;
}

}  // namespace internet
