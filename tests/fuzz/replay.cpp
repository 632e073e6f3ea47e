// SPDX-License-Identifier: MIT
// Gives a fuzz target its seeds, with any compiler: the targets stay buildable and the seeds' promises kept.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

TEST(Seeds, KeepEveryPromise) {
  const char* folder = std::getenv("QX_SEEDS");
  ASSERT_NE(folder, nullptr);
  int count = 0;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    std::ifstream stream(file.path(), std::ios::binary);
    const std::string seed{std::istreambuf_iterator<char>(stream), {}};
    ASSERT_TRUE(stream.good() || stream.eof());
    // Every beginning of a seed is one too.
    for (std::size_t size = 0; size <= seed.size(); ++size) {
      EXPECT_EQ(LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(seed.data()), size), 0);
    }
    ++count;
  }
  EXPECT_GE(count, 5);
}
