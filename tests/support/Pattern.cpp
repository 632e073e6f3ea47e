// SPDX-License-Identifier: MIT
#include "tests/support/Pattern.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <vector>

namespace testing_support {
namespace {

constexpr std::size_t kBlock = 1 << 20;
constexpr std::uint64_t kSeedStep = 0x9E3779B1;
constexpr std::uint64_t kBlockStep = 40503;

// The block twice over, so that every rotation of it is one stretch.
std::unique_ptr<char[]> makeDoubledBlock() {
  auto bytes = std::make_unique<char[]>(2 * kBlock);
  std::uint64_t state = 0x243F6A8885A308D3;
  for (std::size_t at = 0; at < kBlock; at += sizeof state) {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    std::memcpy(&bytes[at], &state, sizeof state);
  }
  std::memcpy(&bytes[kBlock], &bytes[0], kBlock);
  return bytes;
}

// Calls use(stretch of the pattern, its length) for the pieces of [position, position + size) until one is
// false.
template <class Use>
bool forEachStretch(std::uint32_t seed, std::uint64_t position, std::size_t size, Use use) {
  static const std::unique_ptr<char[]> doubled = makeDoubledBlock();
  while (size > 0) {
    const std::uint64_t offset = position % kBlock;
    const std::uint64_t rotated = seed * kSeedStep + position / kBlock * kBlockStep + offset;
    const std::size_t length = std::min<std::size_t>(size, kBlock - static_cast<std::size_t>(offset));
    if (!use(&doubled[static_cast<std::size_t>(rotated % kBlock)], length)) return false;
    position += length;
    size -= length;
  }
  return true;
}

}  // namespace

void Pattern::fill(std::uint64_t position, void* buffer, std::size_t size) const {
  char* to = static_cast<char*>(buffer);
  forEachStretch(seed_, position, size, [&to](const char* from, std::size_t length) {
    std::memcpy(to, from, length);
    to += length;
    return true;
  });
}

bool Pattern::matches(std::uint64_t position, const void* data, std::size_t size) const {
  const char* at = static_cast<const char*>(data);
  return forEachStretch(seed_, position, size, [&at](const char* expected, std::size_t length) {
    const bool same = std::memcmp(at, expected, length) == 0;
    at += length;
    return same;
  });
}

void Pattern::writeFile(const std::filesystem::path& path, std::uint64_t size) const {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  std::vector<char> block(kBlock);
  for (std::uint64_t position = 0; position < size; position += kBlock) {
    const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, size - position));
    fill(position, block.data(), length);
    file.write(block.data(), static_cast<std::streamsize>(length));
  }
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

bool Pattern::matchesFile(const std::filesystem::path& path, std::uint64_t size) const {
  std::ifstream file(path, std::ios::binary);
  std::vector<char> block(kBlock);
  std::uint64_t position = 0;
  while (file) {
    file.read(block.data(), static_cast<std::streamsize>(block.size()));
    const auto length = static_cast<std::size_t>(file.gcount());
    if (!matches(position, block.data(), length)) return false;
    position += length;
  }
  return file.eof() && position == size;
}

}  // namespace testing_support
