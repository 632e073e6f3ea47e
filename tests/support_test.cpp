// SPDX-License-Identifier: MIT
// The tests' own tools: does the scripted server do what its script says, and do the helpers tell the truth?
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/Fixture.h"
#include "tests/support/Median.h"
#include "tests/support/Pattern.h"
#include "tests/support/ProcessCounters.h"
#include "tests/support/RawSocket.h"
#include "tests/support/ScratchFolder.h"

namespace {

using testing::ElementsAre;
using testing_support::Pattern;
using testing_support::RawSocket;
using testing_support::ScratchFolder;

RawSocket connectTo(const fixture::Server& server) { return {server.host(), server.port()}; }

std::string command(RawSocket& control, const std::string& line) {
  control.sendLine(line);
  return control.readLine();
}

RawSocket logIn(const fixture::Server& server, const std::string& user = "u",
                const std::string& password = "p") {
  RawSocket control = connectTo(server);
  EXPECT_THAT(control.readLine(), testing::StartsWith("220"));
  EXPECT_THAT(command(control, "USER " + user), testing::StartsWith("331"));
  EXPECT_THAT(command(control, "PASS " + password), testing::StartsWith("230"));
  return control;
}

RawSocket openData(const fixture::Server& server, RawSocket& control) {
  const std::string reply = command(control, "EPSV");
  const auto port = std::stoul(reply.substr(reply.find("|||") + 3));
  return {server.host(), static_cast<std::uint16_t>(port)};
}

TEST(ScriptedFtp, RecordsAConversation) {
  const fixture::ScriptedFtp server(R"({"tree": {"/a.txt": "hello"}})");
  {
    RawSocket control = logIn(server);
    EXPECT_EQ(command(control, "SIZE a.txt"), "213 5");
    RawSocket data = openData(server, control);
    EXPECT_EQ(command(control, "RETR /a.txt"), "150 Opening data connection for /a.txt (5 bytes)");
    EXPECT_EQ(data.readToEnd(), "hello");
    EXPECT_EQ(control.readLine(), "226 Transfer complete");
  }
  server.waitUntilAllClosed();

  EXPECT_THAT(server.commands(), ElementsAre("USER u", "PASS p", "SIZE a.txt", "EPSV", "RETR /a.txt"));
  EXPECT_EQ(server.commandCount("SIZE"), 1);
  EXPECT_EQ(server.repliesSent(), 7);
  const auto connections = server.connections();
  ASSERT_EQ(connections.size(), 1U);
  EXPECT_EQ(connections[0].closedBy, "client");
  const auto data = server.dataConnections();
  ASSERT_EQ(data.size(), 1U);
  EXPECT_EQ(data[0].bytes, 5U);
  EXPECT_EQ(data[0].mode, "passive");
  EXPECT_EQ(data[0].how, "complete");
}

TEST(ScriptedFtp, WaitsAtAGateUntilReleased) {
  const fixture::ScriptedFtp server(
      R"({"rules": [{"on": "DELE", "do": [{"gate": "g"}, {"reply": "250 late"}]}]})");
  RawSocket control = logIn(server);
  control.sendLine("DELE x");
  server.waitAtGate("g");
  EXPECT_EQ(server.ruleFired(0), 1);
  server.release("g");
  EXPECT_EQ(control.readLine(), "250 late");
}

TEST(ScriptedFtp, AWaitHoldsUpNoOtherRequest) {
  const fixture::ScriptedFtp server(R"({"rules": [{"on": "NOOP", "do": [{"gate": "g"}, "normal"]}]})");
  RawSocket control = logIn(server);
  std::thread waiter([&server] { server.waitForCommand("QUIT"); });
  control.sendLine("NOOP");
  server.waitAtGate("g");
  server.release("g");
  EXPECT_EQ(control.readLine(), "200 OK");
  EXPECT_EQ(command(control, "QUIT"), "221 Goodbye");
  waiter.join();
}

TEST(ScriptedFtp, StallsAndResetsATransfer) {
  const fixture::ScriptedFtp server(R"({
      "tree": {"/big": {"size": 3000000, "seed": 5}},
      "rules": [{"on": "RETR", "do": [{"normal": {"stall_after": 1000, "gate": "g", "reset_after": 2000}}]}]})");
  RawSocket control = logIn(server);
  RawSocket data = openData(server, control);
  EXPECT_THAT(command(control, "RETR big"), testing::StartsWith("150"));
  const std::string start = data.readToEnd(1000);
  ASSERT_EQ(start.size(), 1000U);
  EXPECT_TRUE(Pattern(5).matches(0, start.data(), start.size()));
  server.waitAtGate("g");
  EXPECT_EQ(server.dataConnections()[0].bytes, 1000U);
  server.release("g");
  EXPECT_LE(data.readToEnd().size(), 1000U);
  EXPECT_THAT(control.readLine(), testing::StartsWith("426"));
  EXPECT_EQ(server.dataConnections()[0].how, "reset");
  EXPECT_EQ(server.dataConnections()[0].bytes, 2000U);
}

TEST(ScriptedFtp, TakesAnUpload) {
  const fixture::ScriptedFtp server;
  std::string content(2500000, '\0');
  Pattern(9).fill(0, content.data(), content.size());
  RawSocket control = logIn(server);
  {
    RawSocket data = openData(server, control);
    EXPECT_THAT(command(control, "STOR /up"), testing::StartsWith("150"));
    data.send(content);
  }
  EXPECT_THAT(control.readLine(), testing::StartsWith("226"));
  EXPECT_TRUE(server.matches("/up", 9, content.size()));
  EXPECT_FALSE(server.matches("/up", 9, content.size() - 1));
  EXPECT_FALSE(server.matches("/up", 8, content.size()));
  EXPECT_EQ(server.content("/up"), content);
}

TEST(ScriptedFtp, ClosesIdleConnectionsOnRequest) {
  const fixture::ScriptedFtp server;
  RawSocket control = logIn(server);
  server.disconnect("421 Idle for too long");
  EXPECT_EQ(control.readLine(), "421 Idle for too long");
  EXPECT_EQ(control.readToEnd(), "");
  server.waitUntilAllClosed();
  EXPECT_EQ(server.connections()[0].closedBy, "server");
}

TEST(ScriptedFtp, ListensOnIPv6) {
  const fixture::ScriptedFtp server(R"({"host": "::1", "tree": {"/a": "text"}})");
  RawSocket control = logIn(server);
  RawSocket data = openData(server, control);
  EXPECT_THAT(command(control, "NLST"), testing::StartsWith("150"));
  EXPECT_EQ(data.readToEnd(), "a\r\n");
}

TEST(ScriptedFtp, ChangesItsScript) {
  const fixture::ScriptedFtp server;
  RawSocket control = logIn(server);
  EXPECT_EQ(command(control, "NOOP"), "200 OK");
  server.reconfigure(R"({"rules": [{"on": "NOOP", "do": [{"reply": "500 No more"}]}]})");
  EXPECT_EQ(command(control, "NOOP"), "500 No more");
}

TEST(ScriptedFtp, RefusesAMisspeltScript) {
  EXPECT_THROW(fixture::ScriptedFtp(R"({"welcom": "220 x"})"), fixture::FixtureError);
  EXPECT_THROW(fixture::ScriptedFtp(R"({"rules": [{"on": "RETRE", "do": ["silent"]}]})"),
               fixture::FixtureError);
  EXPECT_THROW(fixture::ScriptedFtp(R"({"rules": [{"on": "RETR", "do": ["clsoe"]}]})"),
               fixture::FixtureError);
  EXPECT_THROW(fixture::ScriptedFtp("{"), fixture::FixtureError);
  const fixture::ScriptedFtp server;
  EXPECT_THROW(server.release("no such gate"), fixture::FixtureError);
  EXPECT_THROW(server.waitFor(R"({"conections": 1})"), fixture::FixtureError);
}

TEST(Server, AWaitInVainThrows) {
  const fixture::ScriptedFtp server;
  EXPECT_THROW(server.waitFor(R"({"connections": 1})", 0), fixture::FixtureError);
}

TEST(Server, StopsWithItsObject) {
  std::uint16_t port = 0;
  {
    const fixture::ScriptedFtp server;
    port = server.port();
    connectTo(server);
  }
  EXPECT_ANY_THROW(RawSocket("127.0.0.1", port));
}

class RealServers : public testing::TestWithParam<const char*> {};

TEST_P(RealServers, ServeTheirFolder) {
  const fixture::RealServer server(GetParam());
  server.put(R"({"/pub/big": {"size": 2000000, "seed": 6}})");
  {
    RawSocket control = connectTo(server);
    std::string reply = control.readLine();
    while (reply.starts_with("220-")) reply = control.readLine();
    EXPECT_THAT(reply, testing::StartsWith("220"));
    EXPECT_THAT(command(control, "USER " + server.user()), testing::StartsWith("331"));
    EXPECT_THAT(command(control, "PASS " + server.password()), testing::StartsWith("230"));
    EXPECT_THAT(command(control, "DELE " + server.folder() + "/none"), testing::StartsWith("550"));
    EXPECT_THAT(command(control, "TYPE I"), testing::StartsWith("200"));
    RawSocket data = openData(server, control);
    control.sendLine("RETR " + server.folder() + "/big");
    EXPECT_EQ(data.readToEnd().size(), 2000000U);
  }
  EXPECT_TRUE(server.matches("/pub/big", 6, 2000000));
  EXPECT_EQ(server.size("/pub/big"), 2000000U);
  EXPECT_EQ(server.connectionCount(), 1);
}

INSTANTIATE_TEST_SUITE_P(All, RealServers,
                         testing::Values("vsftpd", "pyftpdlib", "proftpd", "pure-ftpd", "inetutils-ftpd"));

TEST(Server, RefusedPortRefuses) {
  const fixture::RefusedPort port;
  EXPECT_ANY_THROW(connectTo(port));
}

TEST(Server, BlackholeAcceptsAndCounts) {
  const fixture::Blackhole hole;
  {
    RawSocket socket = connectTo(hole);
    socket.sendLine("hello?");
    hole.waitFor(R"({"connections": 1})");
  }
  hole.waitFor(R"({"closed": 1})");
}

TEST(Pattern, IsTheSameOnBothSides) {
  const fixture::ScriptedFtp server(R"({"tree": {"/p": {"size": 3500000, "seed": 70000}}})");
  const std::string content = server.content("/p");
  ASSERT_EQ(content.size(), 3500000U);
  EXPECT_TRUE(Pattern(70000).matches(0, content.data(), content.size()));
  EXPECT_TRUE(Pattern(70000).matches(1234567, content.data() + 1234567, 1000000));
  EXPECT_FALSE(Pattern(70001).matches(0, content.data(), content.size()));
  EXPECT_FALSE(Pattern(70000).matches(1, content.data(), content.size()));
}

TEST(Pattern, WritesAndComparesFiles) {
  const ScratchFolder folder;
  const auto path = folder.path() / "data";
  Pattern(3).writeFile(path, 2500000);
  EXPECT_TRUE(Pattern(3).matchesFile(path, 2500000));
  EXPECT_FALSE(Pattern(3).matchesFile(path, 2499999));
  EXPECT_FALSE(Pattern(3).matchesFile(path, 2500001));
  EXPECT_FALSE(Pattern(4).matchesFile(path, 2500000));
  EXPECT_FALSE(Pattern(3).matchesFile(folder.path() / "missing", 0));
}

TEST(ScratchFolder, IsRemovedWithItsContent) {
  std::filesystem::path path;
  {
    const ScratchFolder folder;
    path = folder.path();
    std::ofstream(folder.file("a")) << "text";
    EXPECT_TRUE(std::filesystem::exists(path / "a"));
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(ProcessCounters, SeeThreadsAndSockets) {
  const fixture::Blackhole hole;
  const auto before = testing_support::processCounters();
  EXPECT_GT(before.residentBytes, 1000000U);

  RawSocket first = connectTo(hole);
  RawSocket second = connectTo(hole);
  const auto withSockets = testing_support::processCounters();
  EXPECT_GE(withSockets.handles, before.handles + 2);

  int threads = 0;
  std::thread([&threads] { threads = testing_support::processCounters().threads; }).join();
  EXPECT_EQ(threads, withSockets.threads + 1);
}

TEST(Median, TakesTheMiddle) {
  EXPECT_EQ(testing_support::median(std::vector{9, 1, 5}), 5);
  EXPECT_EQ(testing_support::median(std::vector{4, 1, 3, 2}), 2);
  EXPECT_EQ(testing_support::median(std::vector{7}), 7);
}

TEST(Median, OfTheLeastDisturbedRun) {
  using testing_support::leastDisturbedMedian;
  EXPECT_EQ(leastDisturbedMedian(std::vector{9, 8, 7, 6, 9}), 6);
  const std::vector disturbed{50, 50, 50, 3, 90, 4, 50, 50, 3, 50, 50, 50, 50, 50, 50};
  EXPECT_EQ(leastDisturbedMedian(disturbed), 4) << "of the second three";
}

}  // namespace
