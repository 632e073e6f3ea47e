// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/ServerWords.h"

#include <algorithm>
#include <string>

#include "framework/internet/net/InternetLimits.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool isWordByte(char c) noexcept {
  const char lower = ascii::lowerCase(c);
  return (lower >= 'a' && lower <= 'z') || ascii::isDigit(c) || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool endsWord(std::string_view text, std::size_t at) noexcept {
  return at >= text.size() || !isWordByte(text[at]);
}

std::string_view lastComponent(std::string_view path) noexcept {
  return path.substr(path.rfind('/') + 1);  // npos + 1 is the start
}

// One line without its code: how much of it is a path at some place where a word may start.
class Line {
 public:
  Line(std::string_view text, const QuotedPaths& paths, BareName bareName) noexcept
      : text_(text), paths_(paths), bareName_(bareName) {}

  [[nodiscard]] std::size_t pathAt(std::size_t at) const noexcept {
    if (at > 0 && isWordByte(text_[at - 1])) return 0;
    return std::max({quoteAt(at), absoluteAt(at), wholeAt(at, paths_.asked), wholeAt(at, paths_.current),
                     bareAt(at, paths_.asked), bareAt(at, paths_.current)});
  }

 private:
  [[nodiscard]] bool isAt(std::size_t at, std::string_view part) const noexcept {
    return !part.empty() && endsWord(text_, at + part.size()) &&
           ascii::equalBlindToCase(text_.substr(at, part.size()), part);
  }

  // "x", 'x' and `x'; an apostrophe inside a word neither opens nor closes.
  [[nodiscard]] std::size_t quoteAt(std::size_t at) const noexcept {
    const char open = text_[at];
    if (open != '"' && open != '\'' && open != '`') return 0;
    const char close = open == '`' ? '\'' : open;
    const std::string_view reach = text_.substr(0, at + kMaxArgument);  // no path is longer
    std::size_t end = reach.find(close, at + 1);
    while (end != std::string_view::npos && !endsWord(text_, end + 1)) end = reach.find(close, end + 1);
    return end == std::string_view::npos ? 0 : end + 1 - at;
  }

  // Servers that show their real tree put something in front of the path that they were asked for, which may
  // have blanks at its end.
  [[nodiscard]] std::size_t absoluteAt(std::size_t at) const noexcept {
    if (text_[at] != '/') return 0;
    const std::size_t end = std::min(text_.find_first_of(kBlanks, at), text_.size());
    const std::string_view name = lastComponent(paths_.asked);
    for (std::size_t slash = at; slash < end; ++slash) {
      if (text_[slash] == '/' && isAt(slash + 1, name)) return std::max(end, slash + 1 + name.size()) - at;
    }
    return end - at;
  }

  [[nodiscard]] std::size_t wholeAt(std::size_t at, std::string_view path) const noexcept {
    return path.find('/') != std::string_view::npos && isAt(at, path) ? path.size() : 0;
  }

  [[nodiscard]] std::size_t bareAt(std::size_t at, std::string_view path) const noexcept {
    const std::string_view name = lastComponent(path);
    if (!isAt(at, name)) return 0;
    const bool leads =
        text_.find_first_not_of(kBlanks) == at || text_.substr(at + name.size()).starts_with(':');
    return leads || bareName_ == BareName::anywhere ? name.size() : 0;
  }

  std::string_view text_;
  const QuotedPaths& paths_;
  BareName bareName_;
};

// The line with a '/' in place of each path that `hides` what is looked for. A path that hides nothing stays:
// it may be a part of what the server says ("no files", of a directory called "files").
template <class Hides>
std::string withoutPaths(std::string_view text, const QuotedPaths& paths, BareName bareName, Hides hides) {
  const Line line(text, paths, bareName);
  std::string rest;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = line.pathAt(at);
    const std::string_view part = text.substr(at, std::max<std::size_t>(length, 1));
    rest += length > 0 && hides(part) ? "/" : part;
    at += part.size();
  }
  return rest;
}

std::string_view withoutCode(std::string_view line) noexcept {
  constexpr std::size_t kCode = 4;  // "226 " or "226-"
  const bool coded = line.size() >= kCode && std::all_of(line.begin(), line.begin() + 3, ascii::isDigit) &&
                     (line[3] == ' ' || line[3] == '-');
  return coded ? line.substr(kCode) : line;
}

}  // namespace

bool serverSays(std::string_view text, std::initializer_list<std::string_view> words,
                const QuotedPaths& paths, BareName bareName) {
  const auto isIn = [words](std::string_view said) {
    return std::any_of(words.begin(), words.end(),
                       [said](std::string_view word) { return ascii::containsBlindToCase(said, word); });
  };
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.size() > kMaxReplyLine) continue;  // nothing that anybody would say
    if (isIn(line) && isIn(withoutPaths(withoutCode(line), paths, bareName, isIn))) return true;
  }
  return false;
}

bool tellsOfCrowd(std::string_view reply) {
  if (!reply.starts_with("421") && !reply.starts_with("530")) return false;
  const auto says = [reply](std::initializer_list<std::string_view> words) {
    return serverSays(reply, words, {}, BareName::anywhere);
  };
  return says({"too many", "maximum", "limit"}) &&
         !says({"attempt", "fail", "incorrect", "invalid", "password", "wrong", "time limit"});
}

}  // namespace internet
