// SPDX-License-Identifier: MIT
// The queue's entries without a library and without a window.
#include "hosts/qxbrowse/jobs/TransferList.h"

#include <gmock/gmock.h>

namespace browse {
namespace {

using testing::ElementsAre;

std::vector<Transfer> some(int count) {
  std::vector<Transfer> transfers(static_cast<std::size_t>(count));
  for (int number = 0; number < count; ++number) {
    transfers[static_cast<std::size_t>(number)].remote.path = "/" + std::to_string(number);
  }
  return transfers;
}

class TheTransferList : public testing::Test {
 protected:
  TheTransferList() {
    list.add(some(4));
    static_cast<void>(list.takeChanges());
  }

  // What the next entry comes to.
  void run(TransferState state) {
    ASSERT_NE(list.begin(), nullptr);
    list.end(state, "text");
  }
  [[nodiscard]] std::vector<TransferState> states() const {
    std::vector<TransferState> found;
    for (std::size_t row = 0; row < list.size(); ++row) found.push_back(list[row].state);
    return found;
  }

  TransferList list;
};

using enum TransferState;

TEST_F(TheTransferList, GivesThemOutInTheirOrder) {
  for (int number = 0; number < 4; ++number) {
    const Transfer* const next = list.begin();
    ASSERT_NE(next, nullptr);
    EXPECT_EQ(next->remote.path, "/" + std::to_string(number));
    EXPECT_EQ(list.end(done, ""), static_cast<std::size_t>(number));
  }
  EXPECT_EQ(list.begin(), nullptr);
  EXPECT_EQ(list.count(done), 4U);
}

TEST_F(TheTransferList, GoesOnBehindOneThatFailed) {
  run(failed);
  run(done);
  run(cancelled);
  EXPECT_THAT(states(), ElementsAre(failed, done, cancelled, waiting));
  EXPECT_EQ(list[0].text, "text");
}

TEST_F(TheTransferList, LetsWhatFailedOrWasCancelledWaitAgain) {
  run(failed);
  run(done);
  run(cancelled);
  list.retry(list.ended());
  EXPECT_THAT(states(), ElementsAre(waiting, done, waiting, waiting));
  EXPECT_EQ(list.begin()->remote.path, "/0");
  EXPECT_EQ(list[0].text, "") << "of the attempt before";
}

TEST_F(TheTransferList, TellsWhichOneRuns) {
  run(failed);
  EXPECT_EQ(list.running(), nullptr);
  list.begin();
  EXPECT_EQ(list.running(), &list[1]);
}

TEST_F(TheTransferList, CancelsOnlyWhatWaits) {
  run(done);
  list.begin();
  list.cancelWaiting(0);
  list.cancelWaiting(1);
  list.cancelWaiting(99);
  EXPECT_THAT(states(), ElementsAre(done, running, waiting, waiting));
  list.cancelWaiting();
  EXPECT_THAT(states(), ElementsAre(done, running, cancelled, cancelled));
}

TEST_F(TheTransferList, ForgetsWhatIsDoneWhileAnotherRuns) {
  run(done);
  run(failed);
  list.begin();
  list.clearDone();
  EXPECT_THAT(states(), ElementsAre(failed, running, waiting));
  list.show({7, 1, {}});
  EXPECT_EQ(list[1].progress.moved, 7U);
  EXPECT_EQ(list.end(done, ""), 1U);
  EXPECT_EQ(list[1].transfer.remote.path, "/2");
  EXPECT_EQ(list.count(done), 1U);
}

TEST_F(TheTransferList, TellsWhichRowsChanged) {
  run(done);
  list.begin();
  for (int look = 0; look < 3; ++look) list.show({});
  const TransferList::Changes changes = list.takeChanges();
  EXPECT_FALSE(changes.isAll);
  EXPECT_THAT(changes.rows, ElementsAre(0, 1));
  EXPECT_THAT(list.takeChanges().rows, ElementsAre());
  list.add(some(1));
  EXPECT_TRUE(list.takeChanges().isAll);
  list.clearDone();
  EXPECT_TRUE(list.takeChanges().isAll);
}

TEST_F(TheTransferList, TakesManyEntries) {
  list.add(some(20'000));
  while (list.begin() != nullptr) list.end(done, "");
  EXPECT_EQ(list.count(done), 20'004U);
  list.clearDone();
  EXPECT_EQ(list.size(), 0U);
}

TEST_F(TheTransferList, RetriesThoseThatAreChosenWhereverTheyStandNow) {
  list.cancelWaiting();
  std::vector<Transfer> chosen = list.ended();
  chosen.erase(chosen.begin() + 1, chosen.begin() + 3);
  chosen.front().mayReplace = true;
  list.retry(chosen);
  EXPECT_EQ(list[0].state, TransferState::waiting);
  EXPECT_TRUE(list[0].transfer.mayReplace);
  EXPECT_EQ(list[1].state, TransferState::cancelled);
  EXPECT_EQ(list[3].state, TransferState::waiting);
  list.clearDone();
  list.cancelWaiting();
  list.clearDone();
  list.retry(chosen);
  EXPECT_EQ(list.size(), 0U);
}

}  // namespace
}  // namespace browse
