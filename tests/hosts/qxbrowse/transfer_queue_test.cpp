// SPDX-License-Identifier: MIT
// The queue at a server, without a window: the events stand for what messages would do.
#include "tests/hosts/qxbrowse/TransferQueueTest.h"

namespace browse {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST_F(TheTransferQueue, MovesFilesBothWaysAndOnTheServer) {
  std::ofstream(scratch.path() / "up.txt") << "up";
  queue->add({download("a.txt", 1),
              upload("up.txt"),
              {Direction::copy, {"/pub/b.txt", {}, {}}, {}, "/pub/copy.txt", access, {}}});
  runAll();
  EXPECT_EQ(local("a.txt"), "x");
  EXPECT_EQ(server.content("/pub/up.txt"), "up");
  EXPECT_EQ(server.content("/pub/copy.txt"), "two");
  EXPECT_EQ(queue->list().count(TransferState::done), 3U);
}

TEST_F(TheTransferQueue, MakesTheFolderOfADownload) {
  Transfer deep = download("a.txt");
  deep.local = scratch.path() / "one" / "two" / "a.txt";
  queue->add({deep});
  runAll();
  EXPECT_EQ(local("one/two/a.txt"), "x");
}

TEST_F(TheTransferQueue, GoesOnBehindOneThatFailsAndTriesItAgain) {
  server.reconfigure(R"({"rules": [{"on": "RETR", "argument": "/pub/b.txt", "first": 1,
                                    "do": [{"reply": "550 Not now"}]}]})");
  queue->add({download("a.txt"), download("b.txt", 3), download("c.txt")});
  runAll();
  EXPECT_EQ(state(0), TransferState::done);
  EXPECT_EQ(state(1), TransferState::failed);
  EXPECT_THAT(textOf(1), HasSubstr("nothing is left"));
  EXPECT_EQ(state(2), TransferState::done);
  queue->retry(queue->list().ended());
  runAll();
  EXPECT_EQ(local("b.txt"), "two");
  EXPECT_EQ(queue->list().count(TransferState::done), 3U);
}

TEST_F(TheTransferQueue, TellsOfWhichFileTheServerMayHaveAPart) {
  std::ofstream(scratch.path() / "up.txt") << "up";
  std::vector<std::string> left;
  onAnyChange = [&] { left.push_back(queue->leftOnServer()); };
  queue->add({upload("up.txt"), download("a.txt")});
  runAll();
  EXPECT_THAT(left, testing::Contains("/pub/up.txt"));
  EXPECT_EQ(left.back(), "");
  EXPECT_THAT(left, testing::Each(testing::AnyOf("", "/pub/up.txt")));
}

TEST_F(TheTransferQueue, CancelsOneAndTellsWhatIsLeft) {
  inTheMiddle([this] { queue->cancel(); });
  queue->add({download("large", 700000), download("a.txt")});
  runAll();
  EXPECT_EQ(state(0), TransferState::cancelled);
  EXPECT_THAT(textOf(0), StartsWith("cancelled; "));
  EXPECT_EQ(state(1), TransferState::done);
  EXPECT_EQ(localCount(), 1U) << "a part is left";
}

TEST_F(TheTransferQueue, CancelsAll) {
  inTheMiddle([this] { queue->cancelAll(); });
  queue->add({download("large", 700000), download("a.txt"), download("b.txt")});
  runAll();
  EXPECT_EQ(queue->list().count(TransferState::cancelled), 3U);
}

TEST_F(TheTransferQueue, CancelsOneThatWaits) {
  queue->add({download("a.txt"), download("b.txt")});
  queue->cancel(1);
  runAll();
  EXPECT_EQ(state(0), TransferState::done);
  EXPECT_EQ(state(1), TransferState::cancelled);
}

// A dialog that a message opened read the letter that begins the next one.
TEST_F(TheTransferQueue, BeginsNoSecondOneWithinTheFirst) {
  inTheMiddle([this] {
    queue->add({download("b.txt")});
    letters.readOne();
    EXPECT_EQ(queue->list().count(TransferState::running), 1U);
    server.release("half");
  });
  queue->add({download("large", 700000), download("a.txt")});
  runAll();
  EXPECT_EQ(queue->list().count(TransferState::done), 3U);
  EXPECT_THAT(ended, testing::ElementsAre("/pub/large", "/pub/a.txt", "/pub/b.txt"));
}

TEST_F(TheTransferQueue, ShowsHowFarItIs) {
  std::uint64_t moved = 0;
  inTheMiddle([&] {
    moved = queue->list()[0].progress.moved.value_or(0);
    server.release("half");
  });
  queue->add({download("large", 700000)});
  runAll();
  EXPECT_GE(moved, 200000U);
  EXPECT_LT(moved, 700000U);
  EXPECT_EQ(state(0), TransferState::done);
}

TEST_F(TheTransferQueue, ShowsHowFarAnUploadIs) {
  constexpr std::uint64_t kSize = 64 << 20;  // more than the system takes while the server reads nothing
  server.reconfigure(
      R"({"rules": [{"on": "STOR", "do": [{"normal": {"stall_after": 1000, "gate": "never"}}]}]})");
  std::ofstream(scratch.path() / "zeros").close();
  std::filesystem::resize_file(scratch.path() / "zeros", kSize);
  std::uint64_t moved = 0;
  meanwhileOf = [&](const TransferRow& row) {
    if (row.progress.moved.value_or(0) == 0) return;
    moved = *row.progress.moved;
    queue->cancel();
  };
  Transfer large = upload("zeros");
  large.size = kSize;
  queue->add({large});
  runAll();
  EXPECT_GT(moved, 0U);
  EXPECT_LT(moved, kSize);
  EXPECT_EQ(state(0), TransferState::cancelled);
}

TEST_F(TheTransferQueue, EndsInTheMiddleOfATransfer) {
  bool isOver = false;
  inTheMiddle([&] { queue->end([&] { isOver = true; }); });
  queue->add({download("large", 700000), download("a.txt")});
  letters.readUntil([&] { return isOver; });
  EXPECT_FALSE(queue->isRunning());
  EXPECT_EQ(queue->list().count(TransferState::cancelled), 2U);
  EXPECT_EQ(localCount(), 0U);
}

// Where the session of the user ends, the system ends the process behind the message that says so.
TEST_F(TheTransferQueue, HasLeftNothingOfADownloadWhenItIsToldToEnd) {
  inTheMiddle([this] {
    EXPECT_EQ(localCount(), 1U);
    queue->end([] {});
    EXPECT_EQ(localCount(), 0U);
  });
  queue->add({download("large", 700000)});
  runAll();
  EXPECT_EQ(localCount(), 0U);
}

TEST_F(TheTransferQueue, EndsAtOnceWhenNothingRuns) {
  bool isOver = false;
  queue->end([&] { isOver = true; });
  queue->add({download("a.txt")});
  letters.readUntil([&] { return isOver; });
  EXPECT_EQ(state(0), TransferState::waiting);
}

// A letter that was on its way called into what was gone.
TEST_F(TheTransferQueue, ForgetsLettersThatComeAfterItsEnd) {
  queue->add({download("a.txt")});
  queue.reset();
  letters.readOne();
  EXPECT_EQ(localCount(), 0U);
}

}  // namespace
}  // namespace browse
