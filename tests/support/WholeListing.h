// SPDX-License-Identifier: MIT
// A listing from a text that is there whole, or in pieces of one size, with entries to walk over at will.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/internet/listing/ListingReader.h"

namespace testing_support {

struct WholeListing : internet::FtpListing {
  explicit WholeListing(FtpListing listing) : FtpListing(std::move(listing)) {
    for (internet::FtpEntry entry; FtpListing::entries.takeFirst(entry);) entries.push_back(entry);
  }
  std::vector<internet::FtpEntry> entries;
};

inline WholeListing readListing(internet::ListingForm form, std::string_view text, std::int64_t now,
                                const internet::ListingRules& rules, std::size_t piece) {
  internet::ListingReader reader(form, now, rules);
  for (; text.size() > piece; text.remove_prefix(piece)) reader.take(text.substr(0, piece));
  reader.take(text);
  return WholeListing(reader.finish());
}

inline WholeListing parseList(std::string_view text, std::int64_t now,
                              const internet::ListingRules& rules = {},
                              std::size_t piece = std::string_view::npos) {
  return readListing(internet::ListingForm::rows, text, now, rules, piece);
}

inline WholeListing parseMlsd(std::string_view text, const internet::ListingRules& rules = {},
                              std::size_t piece = std::string_view::npos) {
  return readListing(internet::ListingForm::facts, text, 0, rules, piece);
}

}  // namespace testing_support
