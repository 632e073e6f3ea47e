// SPDX-License-Identifier: MIT
// A file that has come where one goes to since the user was asked. What waits long enough was replaced by an
// upload or a copy, and during a download, without a word.
#include "tests/hosts/qxbrowse/TransferQueueTest.h"

namespace browse {
namespace {

using testing::Contains;
using testing::Not;
using testing::StartsWith;

class ATakenTarget : public TheTransferQueue {
 protected:
  ATakenTarget() { std::ofstream(scratch.path() / "b.txt") << "mine"; }

  [[nodiscard]] Transfer copy() const {
    return {Direction::copy, {"/pub/c.txt", {}, {}}, {}, "/pub/b.txt", access, {}};
  }

  void tryIt(const Transfer& transfer) {
    queue->add({transfer});
    runAll();
    EXPECT_EQ(state(0), TransferState::failed);
    EXPECT_EQ(textOf(0), "a file of this name has come meanwhile; nothing was moved");
  }
  void agree() {
    std::vector<Transfer> agreed = queue->list().ended();
    for (Transfer& transfer : agreed) transfer.mayReplace = true;
    queue->retry(agreed);
    runAll();
    EXPECT_EQ(state(0), TransferState::done) << textOf(0);
  }
};

TEST_F(ATakenTarget, IsReplacedByADownloadThatTheUserAgreesToAlone) {
  tryIt(download("b.txt"));
  EXPECT_EQ(local("b.txt"), "mine");
  agree();
  EXPECT_EQ(local("b.txt"), "two");
}

TEST_F(ATakenTarget, IsReplacedByAnUploadThatTheUserAgreesToAlone) {
  tryIt(upload("b.txt"));
  EXPECT_EQ(server.content("/pub/b.txt"), "two");
  agree();
  EXPECT_EQ(server.content("/pub/b.txt"), "mine");
}

TEST_F(ATakenTarget, IsReplacedByACopyThatTheUserAgreesToAlone) {
  tryIt(copy());
  EXPECT_EQ(server.content("/pub/b.txt"), "two");
  agree();
  EXPECT_EQ(server.content("/pub/b.txt"), "three");
}

TEST_F(ATakenTarget, StaysWhereItComesDuringTheDownload) {
  inTheMiddle([this] {
    std::ofstream(scratch.path() / "large") << "mine";
    server.release("half");
  });
  queue->add({download("large", 700000)});
  runAll();
  EXPECT_EQ(state(0), TransferState::failed);
  EXPECT_THAT(textOf(0), StartsWith("a file of this name has come meanwhile; "));
  EXPECT_EQ(local("large"), "mine");
  EXPECT_EQ(localCount(), 2U) << "a part is left";
}

TEST_F(ATakenTarget, IsNotWhatNobodyCanTell) {
  server.reconfigure(R"({"rules": [{"on": "MLST", "do": [{"reply": "421 Too many of you"}, "close"]}]})");
  queue->add({upload("b.txt")});
  runAll();
  EXPECT_EQ(state(0), TransferState::failed);
  EXPECT_THAT(textOf(0), testing::EndsWith("; nothing was moved"));
  EXPECT_THAT(server.commands(), Not(Contains(StartsWith("STOR"))));
}

}  // namespace
}  // namespace browse
