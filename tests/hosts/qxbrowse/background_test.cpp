// SPDX-License-Identifier: MIT
// The thread that lists, renames and deletes, at servers that answer and at some that never do.
#include "hosts/qxbrowse/jobs/Background.h"

#include <atomic>
#include <string>
#include <vector>

#include "tests/hosts/qxbrowse/LaneTest.h"

namespace browse {
namespace {

using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

qx::Result<std::vector<QXDirEntry>> list(const Session& session) { return session.client.list("/pub"); }

class TheBackground : public LaneTest {
 protected:
  static std::vector<std::string> names(const qx::Result<std::vector<QXDirEntry>>& entries) {
    std::vector<std::string> found;
    for (const QXDirEntry& entry : entries.valueOr({})) found.emplace_back(entry.szName);
    return found;
  }

  void connect() {
    background->connect(login(),
                        [](const qx::Result<qx::Done>& done) { EXPECT_TRUE(done) << done.report().text; });
    letters.readOne();
  }

  // Begins a job that hangs at the gate.
  template <typename Work>
  void hang(Work work) {
    background->run(std::move(work), [this](const auto& answer) {
      hung = answer.report();
      EXPECT_FALSE(answer);
    });
    server.waitAtGate("never");
  }

  void listWell() {
    server.reconfigure(R"({"rules": []})");
    background->run(list, [this](const auto& entries) { listed = names(entries); });
    letters.readOne();
    EXPECT_THAT(listed, ElementsAre("a.txt", "sub"));
  }

  std::optional<Background> background{std::in_place, exports(), post()};
  qx::Report hung;
  std::vector<std::string> listed;
};

constexpr std::string_view kNoListing = R"({"rules": [{"on": ["LIST", "MLSD"], "do": [{"gate": "never"}]}]})";

TEST_F(TheBackground, DoesJobsInTheirOrder) {
  connect();
  std::string order;
  background->run([](const Session& session) { return session.client.createDirectory("/pub/new"); },
                  [&](const qx::Result<qx::Done>& made) { order += made ? "made " : made.report().text; });
  background->run(
      [](const Session& session) { return session.client.rename("/pub/new", "/pub/old"); },
      [&](const qx::Result<qx::Done>& renamed) { order += renamed ? "renamed " : renamed.report().text; });
  background->run(list, [&](const auto& entries) { listed = names(entries); });
  EXPECT_TRUE(background->isBusy());
  for (int job = 0; job < 3; ++job) letters.readOne();
  EXPECT_FALSE(background->isBusy());
  EXPECT_EQ(order, "made renamed ");
  EXPECT_THAT(listed, UnorderedElementsAre("a.txt", "old", "sub"));
}

TEST_F(TheBackground, ListsOverOneConnection) {
  connect();
  for (int job = 0; job < 3; ++job) {
    background->run(list, [&](const auto& entries) { listed = names(entries); });
    letters.readOne();
    EXPECT_THAT(listed, ElementsAre("a.txt", "sub"));
  }
  EXPECT_EQ(server.commandCount("USER"), 1);
}

TEST_F(TheBackground, FailsWithoutALogin) {
  background->run(list, [this](const auto& entries) { hung = entries.report(); });
  letters.readOne();
  EXPECT_THAT(hung.text, HasSubstr("no connection"));
}

TEST_F(TheBackground, TellsWhyALoginFailed) {
  qx::Login wrong = login();
  wrong.password = "wrong";
  background->connect(wrong, [this](const qx::Result<qx::Done>& done) { hung = done.report(); });
  letters.readOne();
  EXPECT_EQ(hung.number, std::uint32_t{QX_ERROR_INCORRECT_PASSWORD});
}

// A listing asks no host whether it may go on, and waited out the silent server.
TEST_F(TheBackground, CancelsAListingOfASilentServerAndGoesOn) {
  connect();
  server.reconfigure(kNoListing);
  hang(list);
  const auto begin = steady_clock::now();
  background->cancel();
  letters.readOne();
  EXPECT_LT(steady_clock::now() - begin, kSoon);
  EXPECT_TRUE(hung.isCancelled);
  server.waitUntilAllClosed();
  listWell();
}

TEST_F(TheBackground, CancelsALoginThatGetsNoAnswer) {
  server.reconfigure(R"({"rules": [{"on": "CONNECT", "do": [{"gate": "never"}]}]})");
  background->connect(login(), [this](const qx::Result<qx::Done>& done) { hung = done.report(); });
  server.waitAtGate("never");
  background->cancel();
  letters.readOne();
  EXPECT_TRUE(hung.isCancelled);
  listWell();
}

TEST_F(TheBackground, CancelsARenameAndADeletion) {
  connect();
  server.reconfigure(
      R"({"rules": [{"on": "RNFR", "do": [{"gate": "never"}]}, {"on": "DELE", "do": [{"gate": "deleting"}]}]})");
  hang([](const Session& session) { return session.client.rename("/pub/a.txt", "/pub/b.txt"); });
  background->cancel();
  letters.readOne();
  EXPECT_TRUE(hung.isCancelled);
  background->run([](const Session& session) { return session.client.remove("/pub/a.txt"); },
                  [this](const qx::Result<qx::Done>& done) { hung = done.report(); });
  server.waitAtGate("deleting");
  background->cancel();
  letters.readOne();
  EXPECT_TRUE(hung.isCancelled);
  listWell();
}

TEST_F(TheBackground, CancelsThoseThatWaitAsWell) {
  connect();
  server.reconfigure(kNoListing);
  hang(list);
  int cancelled = 0;
  for (int job = 0; job < 20; ++job) {
    background->run(list, [&](const auto& entries) { cancelled += entries.report().isCancelled ? 1 : 0; });
  }
  background->cancelAll();
  for (int job = 0; job < 21; ++job) letters.readOne();
  EXPECT_EQ(cancelled, 20);
  listWell();
}

// What makes several calls stops between them.
TEST_F(TheBackground, EndsAJobOfManyCalls) {
  connect();
  std::atomic<int> calls = 0;
  background->run(
      [&](const Session& session) {
        auto entries = session.client.list("/pub");
        for (++calls; !session.isStopped; ++calls) entries = session.client.list("/pub");
        return entries;
      },
      [this](const auto&) {});
  while (calls < 3) std::this_thread::yield();
  background->cancel();
  letters.readOne();
  listWell();
}

TEST_F(TheBackground, EndsInTheMiddleOfASilentListingWithoutAnAnswer) {
  connect();
  server.reconfigure(kNoListing);
  background->run(list, [](const auto&) { ADD_FAILURE() << "nobody is there to get it"; });
  background->run(list, [](const auto&) { ADD_FAILURE() << "nobody is there to get it"; });
  server.waitAtGate("never");
  const auto begin = steady_clock::now();
  background.reset();
  EXPECT_LT(steady_clock::now() - begin, kSoon);
  server.waitUntilAllClosed();
}

// An answer that had been posted called into what was gone.
TEST_F(TheBackground, ForgetsAnswersThatComeAfterItsEnd) {
  connect();
  background->run(list, [](const auto&) { ADD_FAILURE() << "too late"; });
  background->run(list, [](const auto&) { ADD_FAILURE() << "too late"; });
  background.reset();
}

TEST_F(TheBackground, TellsWhatAJobThrows) {
  connect();
  background->run([](const Session&) -> qx::Result<qx::Done> { throw std::runtime_error("no room"); },
                  [this](const qx::Result<qx::Done>& done) { hung = done.report(); });
  letters.readOne();
  EXPECT_EQ(hung.text, "no room");
  listWell();
}

// A client that is freed between the two calls of a listing is gone for the second one.
TEST_F(TheBackground, TakesCancelsAtAnyMoment) {
  connect();
  int answers = 0;
  for (int round = 0; round < 60; ++round) {
    background->run(list, [&](const auto&) { ++answers; });
    // No yields: each costs a time slice where other programs keep the processors busy.
    const auto moment = steady_clock::now() + round * std::chrono::microseconds(20);
    while (steady_clock::now() < moment) {
    }
    background->cancel();
    letters.readOne();
  }
  EXPECT_EQ(answers, 60);
  listWell();
}

}  // namespace
}  // namespace browse
