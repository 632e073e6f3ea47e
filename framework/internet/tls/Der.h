// SPDX-License-Identifier: MIT
// Reads DER (X.690), the form of certificates. The bytes are a stranger's: no length counts before it has
// been checked, and what BER allows beyond DER is refused.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace internet {

using DerBytes = std::span<const std::uint8_t>;

// The first byte of an element. Certificates need no tag of more than one byte.
enum class DerTag : std::uint8_t {
  boolean = 0x01,
  integer = 0x02,
  bitString = 0x03,
  octetString = 0x04,
  objectId = 0x06,
  utf8String = 0x0c,
  numericString = 0x12,
  printableString = 0x13,
  t61String = 0x14,
  ia5String = 0x16,
  utcTime = 0x17,
  generalizedTime = 0x18,
  visibleString = 0x1a,
  universalString = 0x1c,
  bmpString = 0x1e,
  sequence = 0x30,
  set = 0x31
};

// "[3]": of a structure's own numbering.
constexpr DerTag plainField(int number) noexcept { return static_cast<DerTag>(0x80 + number); }
constexpr DerTag nestedField(int number) noexcept { return static_cast<DerTag>(0xa0 + number); }

// Thrown where the bytes are not what they should be.
struct NotDer {};

struct DerElement {
  DerTag tag{};
  DerBytes content;
};

// The elements of some bytes, one after the other. The bytes outlive the reader.
class DerReader {
 public:
  explicit DerReader(DerBytes bytes) noexcept : rest_(bytes) {}

  [[nodiscard]] bool atEnd() const noexcept { return rest_.empty(); }
  void requireEnd() const;

  DerElement next();
  // The content of the next element, which must be one with this tag.
  DerBytes take(DerTag tag);
  // The same where that is the next one; none, and nothing is read, where it is not.
  std::optional<DerBytes> takeIf(DerTag tag);

 private:
  std::uint8_t byte();
  std::size_t length();

  DerBytes rest_;
};

}  // namespace internet
