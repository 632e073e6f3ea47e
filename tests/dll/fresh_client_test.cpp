// SPDX-License-Identifier: MIT
// A new client as a host of any language finds it: its fields by offset.
#include "tests/dll/library.h"

namespace {

class FreshClient : public ClientTest {
 protected:
  template <typename Value>
  [[nodiscard]] Value at(std::size_t offset) const {
    return fieldAt<Value>(client.get(), offset);
  }
};

TEST_F(FreshClient, HasOneReference) { EXPECT_EQ(at<std::uint32_t>(8), 1U); }

TEST_F(FreshClient, HasOptionZeroAndNoTransfer) {
  EXPECT_EQ(at<QXBool>(32), 0);
  EXPECT_EQ(at<QXBool>(40), 0);
  EXPECT_EQ(at<std::uint64_t>(48), 0U);
  EXPECT_EQ(at<std::uint64_t>(56), 0U);
}

TEST_F(FreshClient, HasNoListing) { EXPECT_EQ(at<void*>(64), nullptr); }

TEST_F(FreshClient, HasNoLoginButTheDefaultPortInActiveMode) {
  EXPECT_EQ(at<char>(72), '\0');
  EXPECT_EQ(at<char>(105), '\0');
  EXPECT_EQ(at<char>(170), '\0');
  EXPECT_EQ(at<std::uint32_t>(428), 21U);
  EXPECT_EQ(at<QXBool>(432), 0);
}

TEST_F(FreshClient, HasNoMessage) { EXPECT_EQ(at<char>(433), '\0'); }

TEST_F(FreshClient, IsCreatedAndInitializedButNotConnected) {
  EXPECT_EQ(at<QXBool>(4577), 1);
  EXPECT_EQ(at<QXBool>(4578), 1);
  EXPECT_EQ(at<QXBool>(4579), 0);
  EXPECT_EQ(at<QXBool>(4580), 0);
}

TEST_F(FreshClient, HasASessionButNoFinderAndNoConnection) {
  for (const std::size_t finder : {4584U, 4592U, 4600U, 4608U}) EXPECT_EQ(at<void*>(finder), nullptr);
  EXPECT_EQ(at<void*>(4616), nullptr);
  EXPECT_NE(at<void*>(4624), nullptr);
}

TEST_F(FreshClient, KnowsTheHostsRecordAndLeavesItAlone) {
  EXPECT_EQ(at<QXErrorInfo*>(4632), &error);
  const QXErrorInfo untouched{};
  EXPECT_EQ(std::memcmp(&error, &untouched, sizeof error), 0);
}

TEST_F(FreshClient, MayHaveNoRecord) {
  const Client other = makeClient(library(), nullptr);
  EXPECT_EQ(fieldAt<QXErrorInfo*>(other.get(), 4632), nullptr);
}

}  // namespace
