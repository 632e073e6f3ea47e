// SPDX-License-Identifier: MIT
// How long the client waits for servers that say or take too little, counted exactly: over a network in
// memory.
#include "tests/internet/FtpMemoryTest.h"

namespace internet_tests {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing_support::MemoryFtp;
using testing_support::MemoryLink;

constexpr seconds kAlmostTooLong{29};

class FtpTime : public FtpMemory {
 protected:
  // Every 29 seconds from now on, so many times.
  void everyNowAndThen(int times, const std::function<void()>& happens) {
    for (int i = 0; i < times; ++i) far.network.later(kAlmostTooLong, happens);
  }
  void say(const std::string& text) { far.server.control->toClient += text; }
  // The server never comes to a final reply to this command.
  void keepsWaiting(const std::string& verb) {
    far.server.answers[verb] = "";
    far.server.onCommand = [this, verb](const std::string& line) {
      if (line.starts_with(verb)) everyNowAndThen(20, [this] { say("150 Wait\r\n"); });
    };
  }

  // How long the work takes.
  template <class Work>
  std::chrono::nanoseconds timeOf(Work work) {
    const auto before = far.network.now();
    work();
    return far.network.now() - before;
  }

  Far far;
};

// --- Replies ---

// Each of a thousand preliminary replies gave the server another 30 seconds.
TEST_F(FtpTime, ACommandThatOnlyGetsPreliminaryRepliesIs12002After120Seconds) {
  const auto connection = login();
  keepsWaiting("DELE");
  EXPECT_EQ(timeOf([&] { EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 12002u); }),
            seconds(120));
}

TEST_F(FtpTime, ALogInThatOnlyGetsPreliminaryRepliesIs12002After120Seconds) {
  keepsWaiting("PASS");
  EXPECT_EQ(timeOf([&] { EXPECT_EQ(thrownBy([&] { login(); }).error, 12002u); }), seconds(120));
}

TEST_F(FtpTime, ATransferWhoseEndOnlyGetsPreliminaryRepliesIs12002After120Seconds) {
  const auto connection = login();
  far.server.answers["STOR"] = "150 Send\r\n";
  const auto file = openToWrite(*connection, "/up");
  file->Write("abc", 3);
  everyNowAndThen(20, [&] { say("150 Wait\r\n"); });
  // Then it is looked whether the server has taken all nevertheless.
  EXPECT_EQ(timeOf([&] { EXPECT_EQ(errorOf([&] { return file->Close(); }), 12002u); }),
            seconds(120) + internet::Timeouts().dataError);
}

TEST_F(FtpTime, AFinalReplyOfAnySlowServerIsTakenUpTo120Seconds) {
  const auto connection = login();
  far.server.answers["DELE"] = "";
  far.server.onCommand = [&](const std::string& line) {
    if (!line.starts_with("DELE")) return;
    everyNowAndThen(4, [&] { say("150 Wait\r\n"); });
    far.network.later(milliseconds(3'900), [&] { say("250 Deleted\r\n"); });
  };
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(timeOf([&] { EXPECT_TRUE(connection->Remove("/f")); }), milliseconds(119'900));
  }
}

TEST_F(FtpTime, DataThatComesInDripsMayTakeAnyTime) {
  const auto connection = login();
  far.server.answers["RETR"] = "150 Here\r\n";
  const auto file = openToRead(*connection, "/f");
  everyNowAndThen(20, [&] {
    far.server.data->toClient += "x";
    say("150 Wait\r\n");
  });
  far.network.later(kAlmostTooLong, [&] { far.server.data->server = MemoryLink::End::ended; });
  far.network.later(kAlmostTooLong, [&] { say("226 Done\r\n"); });
  EXPECT_EQ(readToEnd(*file), std::string(20, 'x'));
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
}

TEST_F(FtpTime, TheHostsOwnTimeDoesNotCount) {
  const auto connection = login();
  far.server.answers["STOR"] = "150 Send\r\n";
  const auto file = openToWrite(*connection, "/up");
  file->Write("abc", 3);
  EXPECT_EQ(far.network.wait({}, std::chrono::hours(1)), platform::Wake::timedOut);
  far.network.later(kAlmostTooLong, [&] { say("226 Done\r\n"); });
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
}

// --- Lines that cannot go out at once ---

TEST_F(FtpTime, ALineWaitsUntilTheConnectionTakesIt) {
  const auto connection = login();
  far.server.control->room = 0;
  far.network.later(seconds(5), [&] { far.server.control->room = 4; });
  far.network.later(seconds(5), [&] { far.server.control->room = SIZE_MAX; });
  EXPECT_EQ(timeOf([&] { EXPECT_TRUE(connection->Remove("/f")); }), seconds(10));
  EXPECT_EQ(far.server.lines.back(), "DELE /f");
}

TEST_F(FtpTime, ALineThatTheConnectionDoesNotTakeIs12002AfterTheTimeOfOneReply) {
  const auto connection = login();
  far.server.control->room = 4;
  EXPECT_EQ(timeOf([&] { EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 12002u); }),
            internet::Timeouts().reply);
  EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 12030u) << "half a line went out";
}

TEST_F(FtpTime, AConnectionThatBreaksWhileALineWaitsIs12031AtOnce) {
  const auto connection = login();
  far.server.control->room = 0;
  far.network.later(seconds(5), [&] { far.server.control->server = MemoryLink::End::broken; });
  EXPECT_EQ(timeOf([&] { EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 12031u); }),
            seconds(5));
}

// --- Data that cannot go out at once ---

class FtpSlowUpload : public FtpTime {
 protected:
  // The system takes what fits into its buffer at once, and no more before the server has nearly all of it.
  void SetUp() override {
    far.server.answers["STOR"] = "150 Send\r\n";
    far.server.onLeft = [this](const MemoryFtp::Link& link) {
      if (link == far.server.data && !link->clientBroken) say("226 Done\r\n");
    };
    connection = login();
    file = openToWrite(*connection, "/up");
    far.server.data->room = far.server.data->held = kBuffer;
  }

  static constexpr std::size_t kBuffer = 50'000;
  const std::string content = std::string(2 * kBuffer, 'u');
  std::unique_ptr<CFtpConnection> connection;
  std::unique_ptr<CInternetFile> file;
};

TEST_F(FtpSlowUpload, GoesOnAsLongAsThePeerTakesSomething) {
  everyNowAndThen(10, [&] { far.server.data->held -= 1'000; });
  far.network.later(kAlmostTooLong, [&] { far.server.data->room = SIZE_MAX; });
  EXPECT_EQ(timeOf([&] { file->Write(content.data(), static_cast<std::uint32_t>(content.size())); }),
            11 * kAlmostTooLong);
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
}

TEST_F(FtpSlowUpload, Is12002WhenThePeerTakesNothingMore) {
  everyNowAndThen(3, [&] { far.server.data->held -= 1'000; });
  const auto write = [&] { file->Write(content.data(), static_cast<std::uint32_t>(content.size())); };
  const auto time = timeOf([&] { EXPECT_EQ(thrownBy(write).error, 12002u); });
  EXPECT_GE(time, 3 * kAlmostTooLong + internet::Timeouts().data);
  EXPECT_LE(time, 3 * kAlmostTooLong + 2 * internet::Timeouts().data)
      << "it is looked at when the time is up";
}

}  // namespace
}  // namespace internet_tests
