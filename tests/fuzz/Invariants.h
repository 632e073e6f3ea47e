// SPDX-License-Identifier: MIT
// What holds for every entry, whatever a server sends. A broken promise ends the program, which the fuzzer
// reports.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "framework/internet/listing/FtpListing.h"

namespace fuzz {

inline void require(bool promise) {
  if (!promise) std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

inline void requireSoundName(std::string_view name) {
  require(!name.empty() && name != "." && name != ".." && name.size() < internet::kMaxNameLength);
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    require(byte >= 0x20 && byte != 0x7f && c != '/');
  }
  require(name.find("\\..\\") == std::string_view::npos);
  require(!name.starts_with("..\\") && !name.ends_with("\\.."));
}

inline void requireSound(const internet::FtpEntry& entry) {
  requireSoundName(entry.name);
  require(entry.isDirectory == ((entry.attributes & internet::kEntryDirectory) != 0));
  require(entry.attributes != 0);
  require((entry.attributes & internet::kEntryNormal) == 0 || entry.attributes == internet::kEntryNormal);
  require(!(entry.isDirectory && entry.isLink));
  require(entry.size == 0 || !(entry.isDirectory || entry.isLink));
}

inline bool same(const internet::FtpEntry& a, const internet::FtpEntry& b) {
  return a.name == b.name && a.size == b.size && a.modified == b.modified && a.attributes == b.attributes &&
         a.isDirectory == b.isDirectory && a.isLink == b.isLink && a.inServersZone == b.inServersZone;
}

}  // namespace fuzz
