// SPDX-License-Identifier: MIT
// The table of all operations in QXIPInt.h, tried row by row: on which thread they work, over which
// connection, whether messages are dispatched and OnPoll is asked meanwhile, how often they try, and what the
// message line is in the end.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <thread>

#include "QXHooks.h"
#include "tests/lifetime/EndingClient.h"
#include "tests/lifetime/Operations.h"
#include "tests/storm/Count.h"
#include "tests/storm/Mailbox.h"
#include "tests/support/Fixture.h"
#include "tests/support/ScratchFolder.h"

namespace stated {
namespace {

enum class Thread { caller, worker };
enum class Connection { web, made, object, own };
enum class Messages { left, dispatched };
enum class Poll { no, asked, counters };
enum class Line { kept, told, failed };

using lifetime::Operation;

struct Row {
  std::string_view name;
  int slot;
  Thread thread;
  Connection connection;
  Messages messages;
  Poll poll;
  int tries;
  Line line;
};

constexpr Row kRows[] = {
#define QX_OPERATION(name, slot, thread, connection, messages, poll, tries, line) \
  {#name, slot, Thread::thread, Connection::connection, Messages::messages, Poll::poll, tries, Line::line},
#include "tests/stated/operations.inc"
#undef QX_OPERATION
};

// An operation's name begins the names of its variants.
const Row* rowOf(std::string_view variant) {
  const auto* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                       [&](const Row& r) { return variant.starts_with(r.name); });
  return row != std::end(kRows) ? row : nullptr;
}

// Slots that begin with a line of their own, and those whose success leaves a record of a look in vain.
const std::set<int> kEntering{26, 31, 32, 33, 39, 41, 42, 43, 47, 48, 50};
const std::set<int> kLookingInVain{42, 43, 44};

// Where the server stops to answer: the commands that are an operation's own work.
nlohmann::json workOf(const std::string& variant) {
  static const std::map<std::string_view, nlohmann::json> verbs{
      {"FTPConnect", "USER"},   {"FTPDownloadFile", "RETR"}, {"FTPUploadFile", "STOR"},
      {"FTPCpyFileTo", "RETR"}, {"FTPMovFile", "RETR"},      {"FTPRmvFile", "DELE"},
      {"FTPRmvDir", "RMD"},     {"FTPCreate", "MKD"},        {"FTPWriteFile", "STOR"},
      {"FTPReadFile", "RETR"},  {"FTPRenameFile", "RNFR"},   {"FTPWriteFileAppending", "RETR"},
  };
  const auto next = verbs.upper_bound(variant);
  if (next != verbs.begin() && variant.starts_with(std::prev(next)->first)) return std::prev(next)->second;
  return {"LIST", "MLSD", "MLST", "SIZE"};
}

nlohmann::json stalling(const nlohmann::json& verbs) {
  return {{"user", "user"},
          {"tree", nlohmann::json::parse(lifetime::kTree)},
          {"rules", {{{"on", verbs}, {"do", {{{"gate", "work"}}, "normal"}}}}}};
}

// What the host's functions have seen; they come on any thread.
struct Witness {
  const std::thread::id caller = std::this_thread::get_id();
  storm::Count polled;
  storm::Count dispatched;
  std::atomic<bool> atWork = false;
  std::atomic<bool> cancels = false;
  std::atomic<bool> gotCounters = false;
  std::atomic<bool> misplaced = false;  // what belongs to the caller came elsewhere
  std::atomic<bool> calledHere = false;
  std::atomic<bool> calledElsewhere = false;

  std::atomic<bool> entered = false;  // the message line has told of the operation's beginning
  std::string entryLine;              // how that line begins

  static Witness& of(const TQXIPIFInt* client) { return QXClientHooks::ContextOf<Witness>(client); }
  [[nodiscard]] bool here() const { return std::this_thread::get_id() == caller; }
  void called(const TQXIPIFInt* client) {
    (here() ? calledHere : calledElsewhere) = true;
    const std::string_view line = client->m_szMessage;
    if (line.starts_with(entryLine) && line.find(" - IN: ") != line.npos) entered = true;
  }
  void calledForTheCaller() {
    if (!here()) misplaced = true;
  }
};

QXBool poll(TQXIPIFInt* client, QXHostValue, QXHostValue, QXHostValue transfer, QXBool*) {
  Witness& witness = Witness::of(client);
  witness.calledForTheCaller();
  if (transfer == reinterpret_cast<QXHostValue>(&client->m_Transfer)) witness.gotCounters = true;
  witness.polled.add();
  return witness.cancels && witness.atWork ? 1 : 0;
}

void noteStatus(TQXIPIFInt* client, const char*) { Witness::of(client).called(client); }

void noteEntry(TQXIPIFInt* client, QXHostValue) { Witness::of(client).calledForTheCaller(); }

void noteConnect(TQXIPIFInt* client) {
  QXHooksOf(client)->pOriginal->OnConnect(client);
  Witness::of(client).called(client);
}

void noteDisconnect(TQXIPIFInt* client) {
  QXHooksOf(client)->pOriginal->OnDisconnect(client);
  Witness::of(client).called(client);
}

void noteError(TQXIPIFInt* client, std::uint32_t error, const char* text, std::uint32_t* retries) {
  QXHooksOf(client)->pOriginal->OnIPError(client, error, text, retries);
  Witness::of(client).called(client);
}

struct Ends {
  void operator()(TQXIPIFInt* client) const { client->Release(); }
};

// A client with the witness' hooks, and what its operations work on.
class Stage {
 public:
  explicit Stage(const nlohmann::json& script) : server(script) {
    std::ofstream(folder.file("present")) << "local";
    place.ftpPort = server.port();
    client->FTPSetLogin(web.host().c_str(), "user", "secret", server.port(), 1);
  }
  ~Stage() {
    client.reset();
    storm::dispatchAll();
  }
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  QXBool connect() const {
    return client->FTPConnect(web.host().c_str(), "user", "secret", server.port(), 1, 0, nullptr);
  }
  std::uint32_t run(const Operation& operation) {
    witness.entryLine = "TQXIP::" + std::string(rowOf(operation.name)->name);
    QXClientHooks hooks(client.get(), &witness);
    hooks->OnPoll = &poll;
    hooks->OnStatus = &noteStatus;
    hooks->OnNotify = &noteEntry;
    hooks->OnConnect = &noteConnect;
    hooks->OnDisconnect = &noteDisconnect;
    hooks->OnIPError = &noteError;
    record = {};
    client->m_szMessage[0] = '\0';
    return operation.run(*client, place);
  }

  const fixture::ScriptedFtp server;
  const fixture::ScriptedHttp web{
      std::string_view(R"({"answers": [{"head_gate": "work", "body": {"size": 50000}}]})")};
  const testing_support::ScratchFolder folder;
  lifetime::Host unused;
  lifetime::Place place{unused,
                        web.host(),
                        0,
                        web.port(),
                        testing_support::localName(folder.file("present")),
                        testing_support::localName(folder.file("absent")),
                        0};
  storm::Mailbox mailbox;
  QXErrorInfo record{};
  std::unique_ptr<TQXIP, Ends> client{new TQXIP(&record)};
  Witness witness;
};

constexpr std::chrono::minutes kPatience{1};

class Stated : public testing::TestWithParam<Operation> {
 protected:
  const std::string name = GetParam().name;
  const Row& row = *rowOf(name);

  // Returns when the operation waits for its server.
  void awaitWork(const Stage& stage) const {
    if (row.connection == Connection::web) {
      stage.web.waitAtGate("work");
    } else if (row.name != "FTPKeepAlive") {  // which waits from its beginning
      stage.server.waitAtGate("work");
    }
  }

  void letGo(const Stage& stage) const {
    stage.server.release("work");
    if (row.connection == Connection::web) stage.web.release("work");
    if (row.name == "FTPKeepAlive") stage.server.disconnect();
  }

  // While the operation waits, on another thread: what has to happen meanwhile.
  void hostBusiness(Stage& stage) const {
    awaitWork(stage);
    const int polls = stage.witness.polled.value();
    stage.mailbox.post([&stage] { stage.witness.dispatched.add(); });
    if (row.messages == Messages::dispatched) stage.witness.dispatched.waitFor(1, kPatience);
    if (row.poll != Poll::no) stage.witness.polled.waitFor(polls + 1, kPatience);
    letGo(stage);
  }

  void expectThread(const Witness& witness) const {
    EXPECT_EQ(witness.calledElsewhere, row.thread == Thread::worker);
    EXPECT_EQ(witness.calledHere, row.thread == Thread::caller);
    EXPECT_FALSE(witness.misplaced);
  }

  void expectConnection(const Stage& stage, std::size_t before) const {
    const bool hasMore = stage.server.connections().size() > before;
    EXPECT_EQ(hasMore, row.connection == Connection::own || row.connection == Connection::made);
    EXPECT_EQ(stage.web.connectionCount() > 0, row.connection == Connection::web);
  }

  void expectLine(const Stage& stage, const char* told) const {
    const std::string line = stage.client->m_szMessage;
    if (row.line == Line::kept) {
      EXPECT_EQ(line, "");
    }
    if (row.line == Line::told) {
      EXPECT_NE(line.find(told), std::string::npos) << line;
    }
    if (row.line == Line::failed) {
      EXPECT_TRUE(line.ends_with(" failed!")) << line;
    }
  }
};

// As it is when a server takes its time, and then does what it is asked for.
TEST_P(Stated, WorksAsTheTableSays) {
  Stage stage(stalling(workOf(name)));
  ASSERT_TRUE(row.connection == Connection::made || stage.connect() != 0);
  const std::size_t before = stage.server.connections().size();
  std::thread host([&] { hostBusiness(stage); });
  const std::uint32_t answer = stage.run(GetParam());
  const bool dispatched = stage.witness.dispatched.value() > 0;
  host.join();

  EXPECT_NE(answer, 0U) << stage.record.szText;
  EXPECT_EQ(dispatched, row.messages == Messages::dispatched);
  EXPECT_EQ(stage.witness.polled.value() > 0, row.poll != Poll::no);
  EXPECT_EQ(stage.witness.gotCounters, row.poll == Poll::counters);
  expectThread(stage.witness);
  expectConnection(stage, before);
  EXPECT_EQ(stage.witness.entered, kEntering.contains(row.slot));
  expectLine(stage, "OK!");
  EXPECT_EQ(stage.record.bSet != 0, kLookingInVain.contains(row.slot)) << stage.record.szText;
}

// Its server never answers.
TEST_P(Stated, IsCancelledByOnPollWhereThatIsAsked) {
  if (row.poll == Poll::no) return;
  Stage stage(stalling(workOf(name)));
  stage.witness.cancels = true;
  std::thread host([&] {
    awaitWork(stage);
    stage.witness.atWork = true;
  });
  EXPECT_EQ(stage.run(GetParam()), 0U);
  host.join();
  if (row.line == Line::failed) expectLine(stage, "");
  EXPECT_EQ(stage.record.bSet != 0, row.connection != Connection::web) << "a cancel is reported, too";
}

TEST_P(Stated, TriesAgainAsTheTableSays) {
  if (row.name == "FTPKeepAlive") return;  // nothing of it can fail
  Stage stage({{"user", "user"}, {"rules", {{{"on", "PASS"}, {"do", {{{"reply", "530 Never"}}}}}}}});
  stage.web.release("work");
  stage.place.retries = 2;
  const std::uint32_t answer = stage.run(GetParam());
  if (row.connection == Connection::web) {
    EXPECT_EQ(stage.web.connectionCount(), row.tries);
    return;
  }
  EXPECT_EQ(stage.server.commandCount("PASS"), row.tries);
  EXPECT_EQ(answer, row.name == "FTPRmvDir" ? 1U : 0U) << "what cannot be found counts as removed";
  EXPECT_EQ(stage.record.nError, static_cast<std::uint32_t>(QX_ERROR_INCORRECT_PASSWORD));
  expectThread(stage.witness);
  if (row.line != Line::kept) expectLine(stage, "Failed");
}

// Those that succeed at a server which does its part.
std::vector<Operation> operationsOfTheTable() {
  std::vector<Operation> all = lifetime::operations();
  std::erase_if(all, [](const Operation& operation) {
    return rowOf(operation.name) == nullptr || operation.name == std::string_view("FTPConnectInVain");
  });
  return all;
}

INSTANTIATE_TEST_SUITE_P(Of, Stated, testing::ValuesIn(operationsOfTheTable()),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST(StatedTable, IsTriedAsAWhole) {
  const std::vector<Operation> tried = operationsOfTheTable();
  for (const Row& row : kRows) {
    const auto isOfRow = [&](const Operation& operation) { return rowOf(operation.name) == &row; };
    EXPECT_TRUE(std::any_of(tried.begin(), tried.end(), isOfRow)) << row.name;
  }
}

// With a connection whose server answers nothing any more.
TEST(StatedTable, WhatHasNoRowReturnsAtOnce) {
  Stage stage(nlohmann::json{{"user", "user"}});
  ASSERT_EQ(stage.connect(), 1);
  stage.server.reconfigure(R"({"rules": [{"on": "*", "do": ["silent"]}]})");
  const std::size_t sent = stage.server.commands().size();
  stage.mailbox.post([&] { stage.witness.dispatched.add(); });
#define QX_SLOT(number, operation, arguments) \
  if (rowOf(#operation) == nullptr) static_cast<void>(stage.client->operation arguments);
#include "tests/dll/slots.inc"
#undef QX_SLOT
  EXPECT_EQ(stage.server.commands().size(), sent);
  EXPECT_EQ(stage.server.connections().size(), 1U);
  EXPECT_EQ(stage.witness.dispatched.value(), 0);
}

template <typename Call>
bool succeeds(Call&& call) {
  if constexpr (std::is_void_v<decltype(call())>) {
    call();
    return false;
  } else {
    return call() != decltype(call()){};
  }
}

// QXTypes.h says so of all operations; a null server of HTTPDownloadFile has a test that awaits its message
// box.
TEST(StatedTable, NullArgumentsAreFailures) {
  Stage stage(nlohmann::json{{"user", "user"}});
#define QX_SLOT(number, operation, arguments)                                  \
  if (rowOf(#operation) != nullptr && #operation[0] == 'F') {                  \
    EXPECT_FALSE(succeeds([&] { return stage.client->operation arguments; })); \
  }
#include "tests/dll/slots.inc"
#undef QX_SLOT
}

}  // namespace
}  // namespace stated
