// SPDX-License-Identifier: MIT
// The entries of one listing in their order, packed: what is beside the names takes 20 bytes of each. They
// are added at the end and taken from the front; the memory of those that were taken is free again.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string_view>
#include <vector>

#include "framework/internet/listing/FtpEntry.h"

namespace internet {

class EntryList {
 public:
  // Throws std::bad_alloc, and is as it was then.
  void add(const FtpEntry& entry);
  // False when there is none.
  [[nodiscard]] bool takeFirst(FtpEntry& entry);

  [[nodiscard]] std::size_t size() const noexcept { return count_; }
  [[nodiscard]] bool empty() const noexcept { return count_ == 0; }
  // Every name that was added is ASCII.
  [[nodiscard]] bool isAscii() const noexcept { return ascii_; }

  // Calls look(const EntryFacts&, std::string_view name) for each entry in order.
  template <class Look>
  void forEach(Look look) const {
    walk(blocks_, [&](const char* place, const Header& header) {
      look(unpack(header), std::string_view(place + sizeof header, header.nameLength));
    });
  }
  // The same with EntryFacts&, and what it does to them stays.
  template <class Change>
  void changeEach(Change change) {
    walk(blocks_, [&](char* place, const Header& header) {
      EntryFacts facts = unpack(header);
      change(facts, std::string_view(place + sizeof header, header.nameLength));
      const Header changed = pack(facts, header.nameLength);
      std::memcpy(place, &changed, sizeof changed);
    });
  }

 private:
  using Halves = std::array<std::uint32_t, 2>;

  // Stands before each name.
  struct Header {
    Halves size;
    Halves modified;
    std::uint16_t nameLength;
    std::uint8_t attributes;
    std::uint8_t kind;
  };
  static_assert(sizeof(Header) == 20);

  static constexpr std::uint8_t kDirectory = 1;
  static constexpr std::uint8_t kLink = 2;
  static constexpr std::uint8_t kInServersZone = 4;

  static Header pack(const EntryFacts& facts, std::size_t nameLength) noexcept {
    const int kind = (facts.isDirectory ? kDirectory : 0) | (facts.isLink ? kLink : 0) |
                     (facts.inServersZone ? kInServersZone : 0);
    return {.size = std::bit_cast<Halves>(facts.size),
            .modified = std::bit_cast<Halves>(facts.modified),
            .nameLength = static_cast<std::uint16_t>(nameLength),
            .attributes = static_cast<std::uint8_t>(facts.attributes),
            .kind = static_cast<std::uint8_t>(kind)};
  }
  static EntryFacts unpack(const Header& header) noexcept {
    return {.size = std::bit_cast<std::uint64_t>(header.size),
            .modified = std::bit_cast<std::int64_t>(header.modified),
            .attributes = header.attributes,
            .isDirectory = (header.kind & kDirectory) != 0,
            .isLink = (header.kind & kLink) != 0,
            .inServersZone = (header.kind & kInServersZone) != 0};
  }
  static Header headerAt(const char* place) noexcept {
    Header header;
    std::memcpy(&header, place, sizeof header);
    return header;
  }

  template <class Blocks, class Visit>
  void walk(Blocks& blocks, Visit visit) const {
    std::size_t at = taken_;
    for (auto& block : blocks) {
      while (at < block.size()) {
        const Header header = headerAt(block.data() + at);
        visit(block.data() + at, header);
        at += sizeof header + header.nameLength;
      }
      at = 0;
    }
  }

  std::vector<char>& roomFor(std::size_t size);

  std::deque<std::vector<char>> blocks_;
  std::size_t taken_ = 0;  // bytes of the first block
  std::size_t count_ = 0;
  bool ascii_ = true;
};

}  // namespace internet
