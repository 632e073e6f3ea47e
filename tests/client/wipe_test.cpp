// SPDX-License-Identifier: MIT
// Content destruction: FillWipePattern, WipeWith, Wipe, FTPDestroyFileContent.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"
#include "tests/client/SlotHost.h"

namespace {

using Values = std::vector<std::uint32_t>;

class Wipe : public testing::Test {
 protected:
  QXErrorInfo record{};
  RecordingClient client{&record};
  SlotHost host;

  void TearDown() override {
    EXPECT_TRUE(client.calls().empty());
    EXPECT_STREQ(client.m_szMessage, "");
    EXPECT_TRUE(IsBlank(record));
  }
  // The first `count` of eight values that were all 99.
  Values filled(std::uint32_t value, std::uint32_t count) {
    Values pattern(8, 99);
    client.m_pWipePattern = pattern.data();
    EXPECT_EQ(client.FillWipePattern(value, count), 1);
    client.m_pWipePattern = nullptr;
    return pattern;
  }
};

TEST_F(Wipe, FillsThePatternWithTheValueAndNoFurtherThanTheCount) {
  EXPECT_EQ(filled(0, 3), (Values{0, 0, 0, 99, 99, 99, 99, 99}));
  EXPECT_EQ(filled(0xFFFFFFFF, 1), (Values{0xFFFFFFFF, 99, 99, 99, 99, 99, 99, 99}));
  EXPECT_EQ(filled(2, 8), Values(8, 2));
  EXPECT_EQ(filled(7, 0), Values(8, 99));
  EXPECT_EQ(filled(1, 0), Values(8, 99));
}

TEST_F(Wipe, ThePatternOfValueOneIsRandomAndSeededWithTheTime) {
  const auto before = static_cast<unsigned>(std::time(nullptr));
  const Values pattern = filled(1, 8);
  const auto after = static_cast<unsigned>(std::time(nullptr));
  bool isOfThatTime = false;
  for (unsigned seed = before; seed <= after; ++seed) {
    // allowed: srand: the pattern is that of this generator
    std::srand(seed);
    Values expected;
    // allowed: rand: as above
    for (int i = 0; i < 8; ++i) expected.push_back(static_cast<std::uint32_t>(std::rand()));
    isOfThatTime = isOfThatTime || pattern == expected;
  }
  EXPECT_TRUE(isOfThatTime);
}

TEST_F(Wipe, WithoutAnArrayNothingIsFilled) {
  EXPECT_EQ(client.FillWipePattern(0, 1000), 1);
  EXPECT_EQ(client.FillWipePattern(1, 1000), 1);
}

TEST_F(Wipe, WipeWithAndDestroyAnswerOneToAnything) {
  for (const char* path : {static_cast<const char*>(nullptr), "", "/a", "\x01"}) {
    EXPECT_EQ(client.WipeWith(path, 0, 0), 1);
    EXPECT_EQ(client.WipeWith(path, 0xFFFFFFFF, 0xFFFFFFFF), 1);
    EXPECT_EQ(client.FTPDestroyFileContent(path, 0, 0, 0, 0), 1);
    EXPECT_EQ(client.FTPDestroyFileContent(path, 9, 0xFFFFFFFF, 1, 2), 1);
  }
}

TEST_F(Wipe, AnswersZeroToANullPathAloneEvenOnAClientThatIsNotInitialised) {
  client.m_bInitialized = 0;
  EXPECT_EQ(client.Wipe(nullptr), 0);
  EXPECT_EQ(client.Wipe(""), 1);
  EXPECT_EQ(client.Wipe("/a"), 1);
  client.m_bInitialized = 1;
}

class WipePasses : public Wipe {
 protected:
  std::vector<std::string> passes;

  // The host's WipeWith answers `atPass` to that pass and 1 to the others.
  QXBool wipe(std::size_t pass, QXBool atPass) {
    passes.clear();
    host.wipeWith = [&, pass, atPass](const char* path, std::uint32_t pattern, std::uint32_t retries) {
      passes.push_back(std::string(path) + " " + std::to_string(pattern) + " " + std::to_string(retries));
      return passes.size() == pass ? atPass : QXBool{1};
    };
    return host.Wipe("/a");
  }
};

TEST_F(WipePasses, OverwriteSixTimesInTurnAndThenAtRandom) {
  EXPECT_EQ(wipe(7, 1), 1);
  EXPECT_EQ(passes, (std::vector<std::string>{"/a 0 1", "/a 4294967295 1", "/a 0 1", "/a 4294967295 1",
                                              "/a 0 1", "/a 4294967295 1", "/a 1 1"}));
}

TEST_F(WipePasses, EndAtTheFirstThatFails) {
  for (std::size_t pass = 1; pass <= 7; ++pass) {
    EXPECT_EQ(wipe(pass, 0), 0);
    EXPECT_EQ(passes.size(), pass);
  }
}

TEST_F(WipePasses, TheAnswerOfTheLastIsTheResult) { EXPECT_EQ(wipe(7, 2), 2); }

}  // namespace
