// SPDX-License-Identifier: MIT
#include "framework/internet/net/ProtocolLog.h"

#include <algorithm>
#include <new>
#include <utility>

#include "framework/text/AsciiText.h"
#include "framework/text/HostText.h"
#include "framework/text/Secret.h"

namespace internet {

namespace {

// The text without its line end, and `rest` behind it.
std::string_view takeLine(std::string_view& rest) noexcept {
  const std::size_t end = std::min(rest.find('\n'), rest.size());
  std::string_view line = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// Whatever the password is, and also one that the log does not know.
std::string shownLine(std::string_view line, std::string_view hidden) {
  constexpr std::string_view kPass = "PASS ";
  if (line.starts_with(kPass)) return std::string(kPass).append("****");
  std::string result = secret::masked(line, hidden);
  std::replace_if(result.begin(), result.end(), ascii::isControl, '?');
  return hosttext::textForHost(result, platform::narrowCodePage());
}

}  // namespace

// The log is for people: a lack of memory must not end the work that it tells of.
void ProtocolLog::keep(std::string_view mark, std::string_view lines) noexcept {
  if (!session_->wantsProtocol()) return;
  try {
    do {
      kept_.push_back(std::string(mark).append(shownLine(takeLine(lines), secret_)));
    } while (!lines.empty());
  } catch (const std::bad_alloc&) {
  }
}

void ProtocolLog::deliver() {
  if (kept_.empty()) return;
  const auto session = session_;
  for (const std::string& line : std::exchange(kept_, {})) session->protocolLine(line.c_str());
}

}  // namespace internet
