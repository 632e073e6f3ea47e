// SPDX-License-Identifier: MIT
#include "framework/internet/tls/Der.h"

namespace internet {

void DerReader::requireEnd() const {
  if (!atEnd()) throw NotDer{};
}

std::uint8_t DerReader::byte() {
  if (atEnd()) throw NotDer{};
  const std::uint8_t first = rest_.front();
  rest_ = rest_.subspan(1);
  return first;
}

// In one byte below 128, else in as few as it needs, with their number ahead of them.
std::size_t DerReader::length() {
  constexpr std::uint8_t kShort = 0x80;
  const std::uint8_t first = byte();
  if (first < kShort) return first;
  const int count = first - kShort;
  if (count < 1 || count > 4) throw NotDer{};
  std::size_t length = 0;
  for (int i = 0; i < count; ++i) {
    length = length << 8 | byte();
    if (length == 0) throw NotDer{};
  }
  if (length < kShort) throw NotDer{};
  return length;
}

DerElement DerReader::next() {
  constexpr std::uint8_t kTagGoesOn = 0x1f;
  const std::uint8_t tag = byte();
  if ((tag & kTagGoesOn) == kTagGoesOn) throw NotDer{};
  const std::size_t size = length();
  if (size > rest_.size()) throw NotDer{};
  const DerElement element{static_cast<DerTag>(tag), rest_.first(size)};
  rest_ = rest_.subspan(size);
  return element;
}

DerBytes DerReader::take(DerTag tag) {
  const DerElement element = next();
  if (element.tag != tag) throw NotDer{};
  return element.content;
}

std::optional<DerBytes> DerReader::takeIf(DerTag tag) {
  if (atEnd() || static_cast<DerTag>(rest_.front()) != tag) return std::nullopt;
  return take(tag);
}

}  // namespace internet
