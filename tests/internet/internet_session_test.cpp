// SPDX-License-Identifier: MIT
// Sessions, connections and lookups: who may end when, and what callbacks may do.
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/NameLookup.h"
#include "tests/internet/FtpTest.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using namespace nlohmann::literals;
using Statuses = std::vector<std::uint32_t>;

class InternetSession : public FtpTest {};

TEST_F(InternetSession, KeepsItsSettings) {
  EXPECT_EQ(session.GetContext(), 7u);
  EXPECT_EQ(CInternetSession().GetContext(), 1u);
  EXPECT_EQ(CInternetSession().GetTimeouts().reply, std::chrono::seconds(30));
  session.SetTimeouts(shortTimeouts());
  EXPECT_EQ(session.GetTimeouts().reply, shortTimeouts().reply);
}

TEST_F(InternetSession, ItsTimeoutsCountAtTheTimeOfUse) {
  ScriptedFtp server(R"({"rules": [{"on": "DELE", "do": ["silent"]}]})"_json);
  auto connection = connect(server);
  session.SetTimeouts(shortTimeouts());
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12002u);
}

TEST_F(InternetSession, IsSilentUntilItIsEnabled) {
  ScriptedFtp server;
  session.EnableStatusCallback(false);
  auto connection = connect(server);
  EXPECT_EQ(session.takeStatuses(), Statuses{});
  session.EnableStatusCallback();
  connection->Close();
  EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51, 70}));
}

TEST_F(InternetSession, ClosesEveryConnectionMadeOnIt) {
  ScriptedFtp server;
  auto one = connect(server);
  auto two = connect(server);
  session.takeStatuses();
  session.Close();
  EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51, 70, 50, 51, 70}));
  EXPECT_EQ(errorOf([&] { return one->Remove("/x"); }), 12019u);
  server.waitUntilAllClosed();
  one.reset();
  two->Close();
  EXPECT_EQ(session.takeStatuses(), Statuses{});
}

TEST_F(InternetSession, MayEndBeforeItsConnections) {
  ScriptedFtp server;
  auto inner = std::make_unique<RecordingSession>();
  const std::unique_ptr<CFtpConnection> connection(
      inner->GetFtpConnection(server.host().c_str(), "user", "secret", server.port()));
  inner.reset();
  server.waitUntilAllClosed();
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12019u);
  connection->Close();
}

TEST_F(InternetSession, ConnectionsMayEndInTheirOwnCallback) {
  for (const std::uint32_t at : {50u, 51u, 70u}) {
    ScriptedFtp server;
    auto connection = connect(server);
    session.takeStatuses();
    session.onStatus = [&](std::uint32_t status) {
      if (status == at) connection.reset();
    };
    CFtpConnection* const raw = connection.get();
    raw->Close();
    session.onStatus = nullptr;
    EXPECT_FALSE(connection);
    EXPECT_EQ(session.takeStatuses(), (Statuses{50, 51, 70}));
  }
}

TEST_F(InternetSession, MayEndInTheCallbackOfItsConnection) {
  ScriptedFtp server(R"({"tree": {"/a": "x"}})"_json);
  auto inner = std::make_unique<RecordingSession>();
  const std::unique_ptr<CFtpConnection> connection(
      inner->GetFtpConnection(server.host().c_str(), "user", "secret", server.port()));
  // The session's own function runs while it is deleted: it must not touch itself afterwards.
  struct Ending : CInternetSession {
    Ending() { EnableStatusCallback(); }
    void OnStatusCallback(std::uintptr_t, std::uint32_t status, void*, std::uint32_t) override {
      if (status == 31 && armed) delete this;
    }
    bool armed = false;
  };
  auto* const ending = new Ending;
  const std::unique_ptr<CFtpConnection> doomed(
      ending->GetFtpConnection(server.host().c_str(), "user", "secret", server.port()));
  ending->armed = true;
  EXPECT_EQ(errorOf([&] { return doomed->Remove("/a"); }), 12030u);
}

TEST_F(InternetSession, ACallbacksExceptionLeavesNoDestructor) {
  ScriptedFtp server;
  auto connection = connect(server);
  session.onStatus = [](std::uint32_t) { throw std::runtime_error("the host's own"); };
  connection.reset();
  session.onStatus = nullptr;
  server.waitUntilAllClosed();
}

TEST_F(InternetSession, ThreadsShareWhatIsKnownOfAServer) {
  ScriptedFtp server(R"({"tree": {"/f": "content"}})"_json);
  std::atomic<int> read{0};
  const auto work = [&] {
    for (int i = 0; i < 10; ++i) {
      RecordingSession own;
      const std::unique_ptr<CFtpConnection> connection(
          own.GetFtpConnection(server.host().c_str(), "user", "secret", server.port(), true));
      const auto& control = connection->Control();
      control->request([&] { EXPECT_TRUE(control->traits().mlst); });
      auto file = openToRead(*connection, "/f");
      read += readToEnd(*file) == "content";
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(read, 40);
  EXPECT_LE(server.commandCount("FEAT"), 4);
}

// Lookups

std::vector<platform::SocketAddress> lookUp(const char* name, std::chrono::milliseconds limit) {
  return internet::resolve(name, 21, internet::Deadline(limit));
}

constexpr std::chrono::milliseconds kLong{60'000};

TEST(NameLookup, TakesNumbersWithoutALookup) {
  internet::setResolverForTesting(
      [](const std::string&, std::uint16_t) -> std::vector<platform::SocketAddress> {
        ADD_FAILURE() << "looked up";
        return {};
      });
  const auto v4 = lookUp("192.0.2.1", kLong);
  const auto v6 = lookUp("2001:db8::1", kLong);
  internet::setResolverForTesting(nullptr);
  ASSERT_EQ(v4.size(), 1u);
  EXPECT_EQ(platform::addressText(v4[0]), "192.0.2.1");
  EXPECT_EQ(v4[0].port, 21);
  ASSERT_EQ(v6.size(), 1u);
  EXPECT_EQ(platform::addressText(v6[0]), "2001:db8::1");
}

TEST(NameLookup, AsksTheSystem) {
  const auto addresses = lookUp("localhost", kLong);
  ASSERT_FALSE(addresses.empty());
  const std::string text = platform::addressText(addresses[0]);
  EXPECT_TRUE(text == "127.0.0.1" || text == "::1") << text;
}

// The end of a lookup that nobody waits for any more.
struct SlowLookup {
  std::mutex mutex;
  std::condition_variable changed;
  bool release = false;
  bool ended = false;
};

SlowLookup& slowLookup() {
  static SlowLookup instance;
  return instance;
}

TEST(NameLookup, GivesUpAfterItsTime) {
  SlowLookup& slow = slowLookup();
  slow.release = slow.ended = false;
  internet::setResolverForTesting([](const std::string&, std::uint16_t) {
    std::unique_lock lock(slowLookup().mutex);
    slowLookup().changed.wait(lock, [] { return slowLookup().release; });
    slowLookup().ended = true;
    slowLookup().changed.notify_all();
    return std::vector<platform::SocketAddress>(1);
  });
  std::uint32_t error = 0;
  try {
    lookUp("slow.test", std::chrono::milliseconds(20));
  } catch (const internet::Failure& failure) {
    error = failure.error;
  }
  EXPECT_EQ(error, internet::kTimeout);
  std::unique_lock lock(slow.mutex);
  slow.release = true;
  slow.changed.notify_all();
  slow.changed.wait(lock, [&] { return slow.ended; });
  internet::setResolverForTesting(nullptr);
}

TEST(NameLookup, AResolverThatThrowsFindsNothing) {
  internet::setResolverForTesting(
      [](const std::string&, std::uint16_t) -> std::vector<platform::SocketAddress> {
        throw std::bad_alloc();
      });
  EXPECT_THROW(lookUp("odd.test", kLong), internet::Failure);
  internet::setResolverForTesting(nullptr);
}

}  // namespace
}  // namespace internet_tests
