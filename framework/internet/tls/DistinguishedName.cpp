// SPDX-License-Identifier: MIT
#include "framework/internet/tls/DistinguishedName.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/text/AsciiText.h"
#include "framework/text/HostText.h"

namespace internet {
namespace {

constexpr std::string_view kCommonName = "CN";

// The attributes that have a short name in common use.
constexpr std::pair<std::string_view, std::string_view> kShortNames[] = {
    {"2.5.4.3", kCommonName},
    {"2.5.4.4", "SN"},
    {"2.5.4.5", "serialNumber"},
    {"2.5.4.6", "C"},
    {"2.5.4.7", "L"},
    {"2.5.4.8", "ST"},
    {"2.5.4.9", "street"},
    {"2.5.4.10", "O"},
    {"2.5.4.11", "OU"},
    {"2.5.4.12", "title"},
    {"2.5.4.17", "postalCode"},
    {"2.5.4.42", "GN"},
    {"2.5.4.97", "organizationIdentifier"},
    {"1.2.840.113549.1.9.1", "emailAddress"},
    {"0.9.2342.19200300.100.1.1", "UID"},
    {"0.9.2342.19200300.100.1.25", "DC"},
};

// The first number of an object identifier holds two.
void appendArc(std::string& dotted, std::uint64_t arc) {
  if (!dotted.empty()) {
    dotted += '.' + std::to_string(arc);
    return;
  }
  const std::uint64_t root = std::min<std::uint64_t>(arc / 40, 2);
  dotted = std::to_string(root) + '.' + std::to_string(arc - root * 40);
}

// "2.5.4.3": numbers of seven bits a byte, the last byte of each without the eighth.
std::string dottedObjectId(DerBytes content) {
  constexpr std::uint8_t kGoesOn = 0x80;
  if (content.empty() || (content.back() & kGoesOn) != 0) throw NotDer{};
  std::string dotted;
  std::uint64_t arc = 0;
  bool inside = false;
  for (const std::uint8_t byte : content) {
    if ((!inside && byte == kGoesOn) || arc >> 57 != 0) throw NotDer{};
    arc = arc << 7 | (byte & 0x7fU);
    inside = (byte & kGoesOn) != 0;
    if (!inside) appendArc(dotted, std::exchange(arc, 0));
  }
  return dotted;
}

std::string attributeName(DerBytes objectId) {
  const std::string dotted = dottedObjectId(objectId);
  const auto* known = std::ranges::find(kShortNames, std::string_view(dotted),
                                        &std::pair<std::string_view, std::string_view>::first);
  return known == std::end(kShortNames) ? dotted : std::string(known->second);
}

constexpr bool isShown(char32_t c) noexcept {
  const bool control = c < 0x20 || (c >= 0x7f && c < 0xa0);
  const bool surrogate = c >= 0xd800 && c < 0xe000;
  return !control && !surrogate && c <= 0x10ffff;
}

void append(std::string& text, char32_t c) {
  const auto tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3f)); };
  if (!isShown(c)) {
    text += '?';
  } else if (c < 0x80) {
    text += static_cast<char>(c);
  } else if (c < 0x800) {
    text += {static_cast<char>(0xc0 | c >> 6), tail(0)};
  } else if (c < 0x10000) {
    text += {static_cast<char>(0xe0 | c >> 12), tail(6), tail(0)};
  } else {
    text += {static_cast<char>(0xf0 | c >> 18), tail(12), tail(6), tail(0)};
  }
}

// Characters of `width` bytes each, the highest first.
std::string fromUnits(DerBytes content, std::size_t width) {
  if (content.size() % width != 0) throw NotDer{};
  std::string text;
  for (; !content.empty(); content = content.subspan(width)) {
    char32_t c = 0;
    for (const std::uint8_t byte : content.first(width)) c = c << 8 | byte;
    append(text, c);
  }
  return text;
}

// A character from U+0080 to U+009F, a control character too, is 0xc2 and a byte below 0xa0.
std::string fromUtf8(DerBytes content) {
  const std::string_view bytes(reinterpret_cast<const char*>(content.data()), content.size());
  const bool valid = hosttext::isUtf8(bytes);
  std::string text;
  for (std::size_t at = 0; at < content.size(); ++at) {
    const bool upperControl = valid && content[at] == 0xc2 && content[at + 1] < 0xa0;
    text += upperControl || ascii::isControl(bytes[at]) || (!valid && content[at] >= 0x80) ? '?' : bytes[at];
    if (upperControl) ++at;
  }
  return text;
}

std::string attributeText(const DerElement& value) {
  switch (value.tag) {
    case DerTag::utf8String:
      return fromUtf8(value.content);
    case DerTag::bmpString:
      return fromUnits(value.content, 2);
    case DerTag::universalString:
      return fromUnits(value.content, 4);
    case DerTag::t61String:  // by its letter another alphabet; in certificates it has always been Latin-1
    case DerTag::ia5String:
    case DerTag::numericString:
    case DerTag::printableString:
    case DerTag::visibleString:
      return fromUnits(value.content, 1);
    default:
      return "?";
  }
}

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (std::string_view(R"(,+"\<>;)").find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

// The attributes of one level; there is hardly ever more than one.
std::string readLevel(DerBytes content, std::string& commonName) {
  std::string text;
  DerReader attributes(content);
  do {
    DerReader attribute(attributes.take(DerTag::sequence));
    const std::string name = attributeName(attribute.take(DerTag::objectId));
    const std::string value = attributeText(attribute.next());
    attribute.requireEnd();
    if (name == kCommonName) commonName = value;
    if (!text.empty()) text += '+';
    text += name + '=' + escaped(value);
  } while (!attributes.atEnd());
  return text;
}

}  // namespace

DistinguishedName readDistinguishedName(DerBytes content) {
  DistinguishedName name;
  std::vector<std::string> levels;
  DerReader reader(content);
  while (!reader.atEnd()) levels.push_back(readLevel(reader.take(DerTag::set), name.commonName));
  std::ranges::reverse(levels);
  for (const std::string& level : levels) {
    if (!name.text.empty()) name.text += ", ";
    name.text += level;
  }
  return name;
}

}  // namespace internet
