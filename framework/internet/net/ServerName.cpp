// SPDX-License-Identifier: MIT
#include "framework/internet/net/ServerName.h"

#include <algorithm>

#include "framework/text/AsciiText.h"

namespace internet {

namespace {

// No name has a colon in it.
bool isV6(std::string_view name) noexcept { return name.find(':') != std::string_view::npos; }

// No name ends in a label of digits alone.
bool isV4(std::string_view name) noexcept {
  const std::string_view last = name.substr(name.rfind('.') + 1);
  return !last.empty() && last.size() < name.size() && std::all_of(last.begin(), last.end(), ascii::isDigit);
}

std::string_view withoutBrackets(std::string_view text) noexcept {
  if (text.size() < 2 || text.front() != '[' || text.back() != ']') return text;
  const std::string_view inside = text.substr(1, text.size() - 2);
  return isV6(inside) ? inside : text;
}

}  // namespace

ServerName parseServerName(std::string_view text) {
  const std::string_view name = withoutBrackets(text);
  return {std::string(name), isV6(name) || isV4(name)};
}

std::string placeText(std::string_view name, std::uint16_t port) {
  const std::string host(name.substr(0, name.find('%')));
  return (isV6(name) ? '[' + host + ']' : host) + ':' + std::to_string(port);
}

}  // namespace internet
