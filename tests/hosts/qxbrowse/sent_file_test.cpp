// SPDX-License-Identifier: MIT
// How the queue finds out whether a server has all of a large file. What takes long of one is left out: the
// server takes a few bytes, and says what it would say of all.
#include <thread>

#include "tests/hosts/qxbrowse/TransferQueueTest.h"

namespace browse {
namespace {

using testing::HasSubstr;

// The window stood still while its thread had the library list the folder.
class ALargeUpload : public TheTransferQueue {
 protected:
  ALargeUpload() {
    std::ofstream(scratch.path() / "huge").close();
    std::filesystem::resize_file(scratch.path() / "huge", 4294967301);
    server.reconfigure(R"({"rules": [
      {"on": "STOR", "do": [{"normal": {"close_after": 1000, "final": "226 Done"}}]},
      {"on": "SIZE", "do": [{"reply": "213 4294967301"}]},
      {"on": "MLST", "do": [{"reply": ["250-Listing", " type=file;size=4294967301; /pub/huge", "250 End"]}]},
      {"on": "MLSD", "do": [{"gate": "listing"}, {"normal": {"lines": [
        "type=file;size=4294967301;modify=20240229123456; huge"]}}]}]})");
  }

  // Uploads it, and does this on the queue's thread while the server is asked for the listing.
  void uploadAndMeanwhile(std::function<void()> action) {
    Transfer huge = upload("huge");
    huge.mayReplace = true;  // nobody looks for it before it is sent
    queue->add({huge});
    std::thread watcher([&] {
      server.waitAtGate("listing");
      letters.post(std::move(action));
    });
    runAll();
    watcher.join();
  }
};

TEST_F(ALargeUpload, IsLookedForInTheListingWhileMessagesAreRead) {
  uploadAndMeanwhile([this] { server.release("listing"); });
  EXPECT_EQ(state(0), TransferState::done) << textOf(0);
}

// A size of 32 bits was told for that of the part.
TEST_F(ALargeUpload, IsNoneWhenTheListingTellsLess) {
  server.reconfigure(R"({"rules": [
    {"on": "STOR", "do": [{"normal": {"close_after": 1000, "final": "226 Done"}}]},
    {"on": "SIZE", "do": [{"reply": "213 4294967301"}]},
    {"on": "MLSD", "do": [{"normal": {"lines": ["type=file;size=5;modify=20240229123456; huge"]}}]}]})");
  queue->add({upload("huge")});
  runAll();
  EXPECT_EQ(state(0), TransferState::failed);
  EXPECT_THAT(textOf(0), HasSubstr("; a part of it may be on the server as /pub/huge"));
}

TEST_F(ALargeUpload, CanBeCancelledWhileItIsLookedFor) {
  uploadAndMeanwhile([this] { queue->cancel(); });
  EXPECT_EQ(state(0), TransferState::cancelled);
  EXPECT_EQ(textOf(0), "cancelled; a part of it may be on the server as /pub/huge");
}

}  // namespace
}  // namespace browse
