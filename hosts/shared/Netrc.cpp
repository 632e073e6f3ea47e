// SPDX-License-Identifier: MIT
#include "hosts/shared/Netrc.h"

#include <algorithm>

#include "hosts/shared/Ascii.h"

namespace hosts {
namespace {

using Text = std::string_view;
constexpr Text kBlanks = " \t\r\n";

class Words {
 public:
  explicit Words(Text text) : m_rest(text) {}

  // Empty at the end.
  std::string next() {
    skipBlanks();
    return m_rest.starts_with('"') ? quoted() : plain();
  }

  // The next one that is in no comment: what stands behind a word is none, whatever it begins with.
  std::string nextKeyword() {
    for (skipBlanks(); m_rest.starts_with('#'); skipBlanks()) {
      m_rest.remove_prefix(std::min(m_rest.find('\n'), m_rest.size()));
    }
    return next();
  }

  void skipMacro() { m_rest.remove_prefix(std::min(m_rest.find("\n\n"), m_rest.size())); }

 private:
  void skipBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(kBlanks), m_rest.size())); }

  std::string plain() {
    const Text word = m_rest.substr(0, m_rest.find_first_of(kBlanks));
    m_rest.remove_prefix(word.size());
    return std::string(word);
  }

  std::string quoted() {
    std::string word;
    std::size_t at = 1;
    for (; at < m_rest.size() && m_rest[at] != '"'; ++at) {
      if (m_rest[at] == '\\' && at + 1 < m_rest.size()) ++at;
      word += m_rest[at];
    }
    m_rest.remove_prefix(std::min(at + 1, m_rest.size()));
    return word;
  }

  Text m_rest;
};

}  // namespace

std::optional<NetrcLogin> findInNetrc(Text text, Text host, Text user) {
  Words words(text);
  bool isHosts = false;
  NetrcLogin entry;
  const auto fits = [&] { return isHosts && (user.empty() || entry.user == user || entry.user.empty()); };
  for (std::string word = words.nextKeyword(); !word.empty(); word = words.nextKeyword()) {
    if (word == "machine" || word == "default") {
      if (fits()) break;
      entry = {};
      isHosts = word == "default" || lowered(words.next()) == lowered(host);
    } else if (word == "login") {
      entry.user = words.next();
    } else if (word == "password") {
      entry.password = words.next();
    } else if (word == "macdef") {
      words.skipMacro();
    } else {
      words.next();  // "account" and what nobody knows have a word behind them
    }
  }
  if (!fits()) return {};
  if (entry.user.empty()) entry.user = user;
  return entry;
}

}  // namespace hosts
