// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FtpReply.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "framework/internet/net/InternetLimits.h"
#include "framework/text/AsciiText.h"

namespace internet {

namespace {

// The number at the start of `text`, which is cut off it.
template <class Number>
std::optional<Number> takeNumber(std::string_view& text) noexcept {
  if (text.empty() || !ascii::isDigit(text.front())) return std::nullopt;
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

// The code that starts a reply's line, 0 when there is none.
int codeOf(std::string_view line) noexcept {
  if (line.size() < 3 || line[0] < '1' || line[0] > '5' || !ascii::isDigit(line[1]) ||
      !ascii::isDigit(line[2]))
    return 0;
  return (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
}

}  // namespace

bool FtpReply::unsupported() const noexcept {
  return code == 500 || code == 501 || code == 502 || code == 504 || code == 522;
}

bool FtpReplyReader::feed(std::string_view bytes) {
  bytes_.append(bytes);
  broken_ = broken_ || !parse();
  return !broken_;
}

std::optional<FtpReply> FtpReplyReader::take() {
  if (!ready_) return std::nullopt;
  ready_ = false;
  FtpReply taken = std::exchange(reply_, {});
  broken_ = !parse();
  return taken;
}

bool FtpReplyReader::parse() {
  std::size_t start = 0;
  while (!ready_) {
    const std::size_t end = bytes_.find('\n', std::max(start, searched_));
    if (end == std::string::npos) break;
    std::string_view line(bytes_.data() + start, end - start);
    if (line.ends_with('\r')) line.remove_suffix(1);
    start = end + 1;
    if (line.size() > kMaxReplyLine || !acceptLine(line)) return false;
  }
  bytes_.erase(0, start);
  searched_ = ready_ ? 0 : bytes_.size();
  // Behind a complete reply there may be more than one line.
  return ready_ ? bytes_.size() <= kMaxReply : bytes_.size() <= kMaxReplyLine;
}

bool FtpReplyReader::acceptLine(std::string_view line) {
  const int code = codeOf(line);
  const char separator = line.size() > 3 ? line[3] : ' ';
  if (!collecting_) {
    if (line.empty()) return true;
    if (code == 0 || (separator != ' ' && separator != '-')) return false;
    reply_ = {code, std::string(line)};
    collecting_ = separator == '-';
    ready_ = !collecting_;
    return true;
  }
  if (reply_.text.size() + line.size() > kMaxReply) return false;
  reply_.text.append("\r\n").append(line);
  collecting_ = code != reply_.code || separator != ' ';
  ready_ = !collecting_;
  return true;
}

std::optional<std::uint16_t> parsePassivePort(std::string_view text) {
  // Behind the code: six numbers with commas between them, wherever they start.
  text.remove_prefix(std::min<std::size_t>(text.size(), 3));
  for (; !text.empty(); text.remove_prefix(1)) {
    std::string_view rest = text;
    unsigned numbers[6]{};
    std::size_t count = 0;
    while (count < 6) {
      const auto number = takeNumber<unsigned>(rest);
      if (!number || *number > 255) break;
      numbers[count++] = *number;
      if (count < 6 && !rest.starts_with(',')) break;
      if (count < 6) rest.remove_prefix(1);
    }
    const unsigned port = numbers[4] * 256 + numbers[5];
    if (count == 6 && port != 0) return static_cast<std::uint16_t>(port);
    // Not in the middle of a number.
    while (text.size() > 1 && ascii::isDigit(text[0]) && ascii::isDigit(text[1])) text.remove_prefix(1);
  }
  return std::nullopt;
}

std::optional<std::uint16_t> parseExtendedPassivePort(std::string_view text) {
  const std::size_t open = text.find('(');
  if (open == std::string_view::npos || text.size() < open + 7) return std::nullopt;
  std::string_view rest = text.substr(open + 1);
  const char delimiter = rest[0];
  if (ascii::isDigit(delimiter) || rest[1] != delimiter || rest[2] != delimiter) return std::nullopt;
  rest.remove_prefix(3);
  const auto port = takeNumber<std::uint16_t>(rest);
  if (!port || *port == 0 || rest.size() < 2 || rest[0] != delimiter || rest[1] != ')') return std::nullopt;
  return port;
}

std::optional<std::string> parseQuotedPath(std::string_view text) {
  const std::size_t open = text.find('"');
  if (open == std::string_view::npos) return std::nullopt;
  std::string path;
  for (std::size_t i = open + 1; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x20 || byte == 0x7f) return std::nullopt;
    if (byte == '"') {
      const bool doubled = i + 1 < text.size() && text[i + 1] == '"';
      if (!doubled) return path.empty() || path.size() > kMaxArgument ? std::nullopt : std::optional(path);
      ++i;
    }
    path.push_back(text[i]);
  }
  return std::nullopt;
}

std::optional<std::uint64_t> parseAnnouncedSize(std::string_view text) {
  for (std::size_t open = text.rfind('('); open != std::string_view::npos && open > 0;
       open = text.rfind('(', open - 1)) {
    std::string_view rest = text.substr(open + 1);
    const auto size = takeNumber<std::uint64_t>(rest);
    if (size && (rest.starts_with(" bytes)") || rest.starts_with(" byte)"))) return size;
  }
  return std::nullopt;
}

std::optional<std::uint64_t> parseSizeReply(const FtpReply& reply) {
  if (reply.code != 213 || reply.text.size() < 5) return std::nullopt;
  std::string_view rest = std::string_view(reply.text).substr(4);
  return takeNumber<std::uint64_t>(rest);
}

std::optional<std::string> parseTimeReply(const FtpReply& reply) {
  constexpr std::size_t kCode = 4;  // "213 "
  if (reply.code != 213 || reply.text.size() <= kCode) return std::nullopt;
  return reply.text.substr(kCode);
}

}  // namespace internet
