// SPDX-License-Identifier: MIT
// Open remote files on a scripted server.
#pragma once

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/internet/FtpTest.h"
#include "tests/support/Pattern.h"

namespace internet_tests {

using fixture::ScriptedFtp;
using nlohmann::json;
using namespace nlohmann::literals;
using Statuses = std::vector<std::uint32_t>;

inline constexpr std::uint32_t kSeed = 7;

class FtpTransferTest : public FtpTest {
 protected:
  static constexpr std::uint64_t kBigSize = 3'000'000;

  // A server whose /big is read or /up is written by these transfer options.
  static ScriptedFtp serving(const json& options, const char* verb = "RETR") {
    return ScriptedFtp(json{{"tree", {{"/big", {{"size", kBigSize}, {"seed", kSeed}}}}},
                            {"rules", {{{"on", verb}, {"do", {{{"normal", options}}}}}}}});
  }

  // Reads to the end in blocks and compares with the pattern.
  static std::uint64_t readPattern(CInternetFile& file, std::uint32_t block = 65536) {
    const testing_support::Pattern pattern(kSeed);
    std::vector<char> buffer(block);
    std::uint64_t position = 0;
    while (const std::uint32_t count = file.Read(buffer.data(), block)) {
      EXPECT_TRUE(pattern.matches(position, buffer.data(), count));
      position += count;
    }
    return position;
  }

  static void writePattern(CInternetFile& file, std::uint64_t size, std::uint32_t block = 65536) {
    const testing_support::Pattern pattern(kSeed);
    std::vector<char> buffer(block);
    for (std::uint64_t position = 0; position < size; position += block) {
      const auto count = static_cast<std::uint32_t>(std::min<std::uint64_t>(block, size - position));
      pattern.fill(position, buffer.data(), count);
      file.Write(buffer.data(), count);
    }
  }
};

}  // namespace internet_tests
