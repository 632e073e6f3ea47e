// SPDX-License-Identifier: MIT
#include "framework/internet/listing/EntryList.h"

#include <algorithm>

#include "framework/text/AsciiText.h"

namespace internet {

void EntryList::add(const FtpEntry& entry) {
  const std::size_t length = entry.name.size();
  std::vector<char>& block = roomFor(sizeof(Header) + length);
  const std::size_t place = block.size();
  const Header header = pack(entry, length);
  block.resize(place + sizeof header + length);
  std::memcpy(block.data() + place, &header, sizeof header);
  std::memcpy(block.data() + place + sizeof header, entry.name.data(), length);
  ++count_;
  ascii_ = ascii_ && ascii::isAscii(entry.name);
}

// The last block, which is never filled beyond what it was made for: most listings are short, and a full
// block is not moved to grow.
std::vector<char>& EntryList::roomFor(std::size_t size) {
  constexpr std::size_t kBlock = std::size_t{64} * 1024;
  static_assert(sizeof(Header) + kMaxNameLength < kBlock);
  if (blocks_.empty() || kBlock - blocks_.back().size() < size) blocks_.emplace_back();
  std::vector<char>& block = blocks_.back();
  const std::size_t wanted = block.size() + size;
  if (block.capacity() < wanted) block.reserve(std::min(kBlock, std::max(2 * block.capacity(), 4 * wanted)));
  return block;
}

bool EntryList::takeFirst(FtpEntry& entry) {
  if (count_ == 0) return false;
  const char* const place = blocks_.front().data() + taken_;
  const Header header = headerAt(place);
  entry.name.assign(place + sizeof header, header.nameLength);
  static_cast<EntryFacts&>(entry) = unpack(header);
  --count_;
  taken_ += sizeof header + header.nameLength;
  if (taken_ < blocks_.front().size()) return true;
  blocks_.pop_front();
  taken_ = 0;
  return true;
}

}  // namespace internet
