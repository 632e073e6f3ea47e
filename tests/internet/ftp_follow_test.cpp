// SPDX-License-Identifier: MIT
// The question for a server's zone goes out behind the last byte of a listing, before the reply to that has
// come: over a network in memory, where time is counted exactly.
#include <algorithm>

#include "tests/internet/FindTest.h"
#include "tests/internet/FtpMemoryTest.h"

namespace internet_tests {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;
using testing_support::MemoryFtp;
using testing_support::MemoryLink;

constexpr std::int64_t kShown = 1704164640;  // 2024-01-02 03:04
constexpr std::int64_t kAhead = 7200;
const std::string kTold = "213 20240102010455\r\n";
const std::string kBegun = "150 Here\r\n";
const std::string kDone = "226 Done\r\n";

// A server with one file.
struct OneFile : Far {
  OneFile() {
    server.answers["FEAT"] = "211-Features\r\n MDTM\r\n SIZE\r\n211 End\r\n";
    server.answers["LIST"] = kBegun;
    server.answers["MDTM"] = "";
    server.onCommand = [this](const std::string& line) {
      if (line == "LIST") list();
      if (line == "MDTM a") answer();
    };
  }

  // What it says a second after the listing, whether it has been asked or not; and to each question.
  std::string laterSaid;
  std::vector<std::string> answers{kDone + kTold};
  bool leaves = false;  // when it is asked
  bool askedEarly = false;

  [[nodiscard]] std::ptrdiff_t count(std::string_view line) const {
    return std::count(server.lines.begin(), server.lines.end(), line);
  }

 private:
  void list() {
    server.data->toClient = "01-02-24  03:04AM  1 a\r\n";
    server.data->server = MemoryLink::End::ended;
    network.later(seconds(1), [this] { server.control->toClient += std::exchange(laterSaid, ""); });
  }
  void answer() {
    askedEarly = askedEarly || !laterSaid.empty();
    if (leaves) server.control->server = MemoryLink::End::ended;
    if (answers.empty()) return;
    server.control->toClient += answers.front();
    answers.erase(answers.begin());
  }
};

class FollowingQuestion : public FtpMemory {
 protected:
  struct Outcome {
    Thrown thrown;
    std::int64_t ahead = -1;  // so far are the times that are told behind those that are shown
    nanoseconds time{};
    bool works = false;  // the connection, afterwards
  };
  Outcome list(const OneFile& far) {
    internet::forgetCachedTraits();
    const auto connection = login();
    CFtpFileFind finder(connection.get());
    const nanoseconds start = far.network.now();
    const Search found = search(finder, "/*");
    Outcome outcome{.thrown = found.thrown, .time = far.network.now() - start};
    if (found.entries.size() == 1) outcome.ahead = kShown - found.entries.front().modified;
    outcome.works = works(*connection);
    return outcome;
  }
};

TEST_F(FollowingQuestion, DoesNotWaitForTheEndOfTheListing) {
  OneFile far;
  const Outcome outcome = list(far);
  EXPECT_EQ(outcome.ahead, kAhead);
  EXPECT_EQ(outcome.time, nanoseconds(0));
  EXPECT_TRUE(outcome.works);
  EXPECT_EQ(far.count("MDTM a"), 1);
}

TEST_F(FollowingQuestion, IsNotSentBehindAListingWhoseTimesAreUtc) {
  OneFile far;
  far.server.answers["FEAT"] = "211-Features\r\n SIZE\r\n211 End\r\n";
  far.laterSaid = kDone;
  EXPECT_EQ(list(far).ahead, 0);
  EXPECT_EQ(far.count("MDTM a"), 0);
}

TEST_F(FollowingQuestion, WaitsWhereTheServerTakesSingleLines) {
  for (const auto packets : {MemoryFtp::Packets::cutToOneLine, MemoryFtp::Packets::refused}) {
    OneFile far;
    far.server.packets = packets;
    far.laterSaid = kDone;
    far.answers = {kTold};
    EXPECT_EQ(list(far).ahead, kAhead);
    EXPECT_FALSE(far.askedEarly);
  }
}

// Servers that read commands while a listing runs answer them first, if only by a refusal.
TEST_F(FollowingQuestion, MayBeAnsweredBeforeTheListing) {
  struct Order {
    std::string answers;
    std::int64_t ahead;
  };
  for (const Order& each :
       {Order{kTold + kDone, kAhead}, Order{kTold + "250 Done\r\n", kAhead},
        Order{kTold + kBegun + kDone, kAhead}, Order{"450 A transfer runs\r\n" + kDone, 0},
        Order{"503 Not now\r\n" + kDone, 0}, Order{"500 What?\r\n" + kDone, 0},
        Order{kDone + "550 No such file\r\n", 0}, Order{"200 Done otherwise\r\n" + kTold, kAhead}}) {
    OneFile far;
    far.answers = {each.answers};
    const Outcome outcome = list(far);
    EXPECT_EQ(outcome.ahead, each.ahead) << each.answers;
    EXPECT_EQ(outcome.time, nanoseconds(0)) << each.answers;
    EXPECT_TRUE(outcome.works) << each.answers;
  }
}

TEST_F(FollowingQuestion, TakesNoRefusalAwayFromTheListing) {
  for (const std::string refusal : {"451 Disk trouble\r\n", "500 Disk trouble\r\n", "552 Too long\r\n"}) {
    for (const std::string& answers :
         {refusal + kTold, kTold + refusal, refusal + "550 No\r\n", refusal + "503 Not now\r\n"}) {
      OneFile far;
      far.answers = {answers};
      const Outcome outcome = list(far);
      EXPECT_EQ(outcome.thrown.text + "\r\n", refusal) << answers;
      EXPECT_TRUE(outcome.works) << answers;
    }
  }
}

TEST_F(FollowingQuestion, IsAskedAgainWhereItWasLost) {
  OneFile far;
  far.laterSaid = kDone;
  far.answers = {"", kTold};
  const Outcome outcome = list(far);
  EXPECT_EQ(outcome.ahead, kAhead);
  EXPECT_EQ(outcome.time, seconds(3));
  EXPECT_TRUE(far.askedEarly && outcome.works);
  EXPECT_EQ(far.count("MDTM a"), 2);
}

TEST_F(FollowingQuestion, LeavesARefusedListingItsReplyWhereItWasLost) {
  for (const char* said : {"451 Disk trouble", "500 Disk trouble"}) {
    OneFile far;
    far.laterSaid = std::string(said) + "\r\n";
    far.answers = {""};
    const Outcome outcome = list(far);
    EXPECT_EQ(outcome.thrown.text, said);
    EXPECT_EQ(outcome.time, seconds(3)) << said;
    EXPECT_EQ(far.count("LIST"), 1) << "never again";
  }
}

TEST_F(FollowingQuestion, MayComeLate) {
  for (const bool before : {true, false}) {
    OneFile far;
    far.answers = {before ? kTold : kDone};
    far.laterSaid = before ? kDone : kTold;
    const Outcome outcome = list(far);
    EXPECT_EQ(outcome.ahead, kAhead) << before;
    EXPECT_EQ(outcome.time, seconds(1)) << before;
    EXPECT_TRUE(outcome.works) << before;
  }
}

TEST_F(FollowingQuestion, FindsAServerThatLeaves) {
  OneFile far;
  far.answers.clear();
  far.leaves = true;
  EXPECT_EQ(list(far).thrown.error, 12030u);
}

}  // namespace
}  // namespace internet_tests
