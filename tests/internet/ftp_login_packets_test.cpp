// SPDX-License-Identifier: MIT
// A server that is known to take several lines in one packet gets the first lines of an errand with the
// login. Nothing else may change by that: neither what is answered and notified, nor what a server can do
// that does not take it after all.
#include <algorithm>
#include <array>

#include "framework/internet/FtpFileFind.h"
#include "framework/internet/net/FtpErrand.h"
#include "tests/internet/FtpMemoryTest.h"

namespace internet_tests {
namespace {

using internet::FtpErrand;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing_support::MemoryFtp;
using testing_support::MemoryLink;
using testing_support::MemoryNetwork;
using Packet = std::vector<std::string>;
using Kind = FtpErrand::Kind;

// It has one file, "/f" with the content "abc", and notes what comes together.
class NotingFtp : public MemoryFtp {
 public:
  NotingFtp() {
    answers["FEAT"] = "211-Features\r\n MDTM\r\n211 End\r\n";
    answers["SIZE"] = "213 3\r\n";
    answers["RETR"] = "150 Here\r\n";
    answers["MKD"] = "257 Made\r\n";
    answers["RNTO"] = "250 Renamed\r\n";
    answers["RNFR"] = "350 To what?\r\n";
    onCommand = [this](const std::string& line) { behind(line); };
  }

  void received(const Link& link) override {
    if (link != control) return;
    Packet& packet = packets.emplace_back();
    const std::string& bytes = link->toServer;
    for (std::size_t at = 0, end = 0; (end = bytes.find("\r\n", at)) != std::string::npos; at = end + 2) {
      packet.push_back(bytes.substr(at, end - at));
    }
    if (closesCrowds && packet.size() > 1) {
      link->toServer.clear();
      link->server = MemoryLink::End::ended;
      return;
    }
    const std::size_t before = link->toClient.size();
    MemoryFtp::received(link);
    if (byteByByte) sayByteByByte(link, before);
  }

  std::vector<Packet> takePackets() { return std::exchange(packets, {}); }

  std::vector<Packet> packets;
  bool closesCrowds = false;
  bool byteByByte = false;
  std::string closesAt;  // behind its answer to this verb

 private:
  void behind(const std::string& line) {
    const std::string verb = line.substr(0, line.find(' '));
    if (verb == closesAt) control->server = MemoryLink::End::ended;
    if (verb == "EPRT") port_ = portOf(line);
    if (verb == "EPSV") port_ = 0;
    if (verb != "RETR") return;
    if (port_ != 0) data = MemoryNetwork::current().connectToClient(port_);
    data->toClient = "abc";
    data->server = MemoryLink::End::ended;
    control->toClient += "226 Done\r\n";
  }

  static void sayByteByByte(const Link& link, std::size_t before) {
    const std::string said = link->toClient.substr(before);
    link->toClient.resize(before);
    for (const char byte : said) {
      MemoryNetwork::current().later(milliseconds(1), [link, byte] { link->toClient += byte; });
    }
  }

  std::uint16_t port_ = 0;
};

class LoginPackets : public FtpTest {
 protected:
  std::unique_ptr<CFtpConnection> loginFor(Kind kind, const char* path = "/f", bool passive = true) {
    return std::unique_ptr<CFtpConnection>(
        session.GetFtpConnection("127.0.0.1", "user", "secret", 21, passive, {kind, path}));
  }

  std::string download(bool passive = true) {
    const auto connection = loginFor(Kind::download, "/f", passive);
    const auto file = openToRead(*connection, "/f");
    std::string content = readToEnd(*file);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
    return content;
  }

  // So many connections, behind which it is known that the server takes packets (1), also at a login (2).
  void meet(int connections, bool passive = true) {
    internet::forgetCachedTraits();
    for (; connections > 0; --connections) EXPECT_EQ(download(passive), "abc");
    server.takePackets();
    session.takeStatuses();
  }

  // The connections that the session was told of.
  std::ptrdiff_t connectionsTold() {
    const auto statuses = session.takeStatuses();
    return std::count(statuses.begin(), statuses.end(), internet::kStatusConnected);
  }

  [[nodiscard]] bool sendsLoginsAlone() const {
    return std::none_of(server.packets.begin(), server.packets.end(), [](const Packet& packet) {
      return packet.size() > 1 && (packet[0].starts_with("USER") || packet[0].starts_with("PASS"));
    });
  }

  NotingFtp server;
  MemoryNetwork network{server};
};

TEST_F(LoginPackets, GrowWithWhatTheServerIsKnownToTake) {
  EXPECT_EQ(download(), "abc");
  EXPECT_EQ(server.takePackets(),
            (std::vector<Packet>{
                {"USER user"}, {"PASS secret"}, {"TYPE I", "SIZE /f", "EPSV"}, {"RETR /f"}, {"QUIT"}}));
  EXPECT_EQ(download(), "abc");
  EXPECT_EQ(server.takePackets(),
            (std::vector<Packet>{
                {"USER user"}, {"PASS secret", "TYPE I", "SIZE /f", "EPSV"}, {"RETR /f"}, {"QUIT"}}));
  EXPECT_EQ(download(), "abc");
  EXPECT_EQ(server.takePackets(),
            (std::vector<Packet>{
                {"USER user", "PASS secret", "TYPE I", "SIZE /f", "EPSV"}, {"RETR /f"}, {"QUIT"}}));
}

TEST_F(LoginPackets, ChangeNothingOfWhatIsNotified) {
  EXPECT_EQ(download(), "abc");
  const auto stepByStep = session.takeStatuses();
  for (int known = 1; known <= 2; ++known) {
    EXPECT_EQ(download(), "abc");
    EXPECT_EQ(session.takeStatuses(), stepByStep) << known;
  }
}

TEST_F(LoginPackets, AreAnsweredAlsoWhereEveryByteComesByItself) {
  meet(2);
  server.byteByByte = true;
  EXPECT_EQ(download(), "abc");
  EXPECT_EQ(server.packets.front().size(), 5u);
}

TEST_F(LoginPackets, OfARefusedLoginFailByThatRefusal) {
  for (const char* closesAt : {"", "PASS", "EPSV"}) {
    meet(2);
    const auto answers = server.answers;
    server.answers["PASS"] = "530 Wrong\r\n";
    for (const char* verb : {"TYPE", "SIZE", "EPSV"}) server.answers[verb] = "530 Log in first\r\n";
    server.closesAt = closesAt;
    EXPECT_EQ(thrownBy([&] { loginFor(Kind::download); }).error, 12014u) << closesAt;
    EXPECT_EQ(std::count(server.lines.begin(), server.lines.end(), "PASS secret"), 3) << "told once";
    server.answers = answers;
    server.closesAt.clear();
    EXPECT_EQ(download(), "abc");
    server.lines.clear();
  }
}

// The answer to the line behind PASS was taken for a welcome.
TEST_F(LoginPackets, WithoutAnAnswerToThePasswordLetNobodyIn) {
  for (const int known : {1, 2}) {
    meet(known);
    const std::string welcome = std::exchange(server.answers["PASS"], "");
    EXPECT_EQ(thrownBy([&] { loginFor(Kind::download); }).error, 12002u) << known;
    server.answers["PASS"] = welcome;
  }
}

TEST_F(LoginPackets, EndWithTheServersFarewellWhereverItComes) {
  for (const char* verb : {"USER", "PASS", "TYPE", "SIZE", "EPSV"}) {
    meet(2);
    const std::string usual = std::exchange(server.answers[verb], "421 Farewell\r\n");
    EXPECT_EQ(thrownBy([&] { openToRead(*loginFor(Kind::download), "/f"); }).error, 12030u) << verb;
    EXPECT_EQ(connectionsTold(), 1) << verb;
    server.answers[verb] = usual.empty() ? "200 Done\r\n" : usual;
    EXPECT_EQ(download(), "abc");
  }
}

// The replies to three lines, in each of their orders.
TEST_F(LoginPackets, InAnotherOrderAreNoFile) {
  const std::array<std::string, 3> verbs{"TYPE", "SIZE", "EPSV"};
  std::array<std::string, 3> replies{"200 Done\r\n", "213 3\r\n", "229 Here (|||1000|)\r\n"};
  const auto ordered = replies;
  std::sort(replies.begin(), replies.end());
  do {
    meet(2);
    for (std::size_t i = 0; i < verbs.size(); ++i) server.answers[verbs[i]] = replies[i];
    std::string content;
    const Thrown thrown = thrownBy([&] { content = download(); });
    EXPECT_EQ(thrown.error == 0, content == "abc");
    EXPECT_TRUE(thrown.error != 0 || replies == ordered || replies[2] == ordered[2]);
    for (std::size_t i = 0; i < verbs.size(); ++i) server.answers[verbs[i]] = ordered[i];
  } while (std::next_permutation(replies.begin(), replies.end()));
}

TEST_F(LoginPackets, AreInStepWhereTheServerWantsNoPassword) {
  meet(2);
  server.answers["USER"] = "230 Welcome\r\n";
  server.answers["PASS"] = "503 You are in\r\n";
  EXPECT_EQ(download(), "abc");
}

TEST_F(LoginPackets, LeaveOutUserWhereThePasswordIsAnsweredOddly) {
  server.answers["PASS"] = "232 Come in\r\n";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(download(), "abc");
  EXPECT_TRUE(sendsLoginsAlone());
}

// What fits no other line of a packet has to wait for its own reply; behind a login nothing has to.
TEST_F(LoginPackets, DoNotMakeAnOddAnswerToTheNextCommandADoubt) {
  meet(2);
  server.answers["DELE"] = "200 Gone\r\n";
  const auto connection = loginFor(Kind::none);
  const auto before = network.now();
  EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 0u);
  EXPECT_EQ(network.now(), before);
}

// --- Servers that do not take them after all ---

TEST_F(LoginPackets, WhoseRestIsLostCostTwoSecondsOnce) {
  meet(1);
  server.MemoryFtp::packets = MemoryFtp::Packets::cutToOneLine;
  const auto before = network.now();
  EXPECT_EQ(download(), "abc");
  EXPECT_EQ(network.now() - before, seconds(2));
  EXPECT_EQ(download(), "abc");
  EXPECT_EQ(network.now() - before, seconds(2)) << "remembered";
}

// Nothing is asked behind a password that is not answered: the answer could be taken for its.
TEST_F(LoginPackets, WhosePasswordIsLostFailOnceByTheTimeForAReply) {
  meet(2);
  server.MemoryFtp::packets = MemoryFtp::Packets::cutToOneLine;
  EXPECT_EQ(thrownBy([&] { download(); }).error, 12002u);
  server.takePackets();
  EXPECT_EQ(download(), "abc");
  EXPECT_TRUE(sendsLoginsAlone()) << "remembered";
}

TEST_F(LoginPackets, ThatAreTurnedDownAreFollowedByALoginStepByStepOfWhichNobodyHears) {
  for (const bool closes : {true, false}) {
    for (const int known : {1, 2}) {
      meet(known);
      server.closesCrowds = closes;
      server.MemoryFtp::packets = closes ? MemoryFtp::Packets::taken : MemoryFtp::Packets::refused;
      const auto before = network.now();
      const auto connection = loginFor(Kind::find);
      EXPECT_EQ(network.now(), before);
      EXPECT_EQ(connectionsTold(), 1) << closes << known;
      server.takePackets();
      EXPECT_TRUE(works(*connection));
      loginFor(Kind::find);
      EXPECT_TRUE(sendsLoginsAlone()) << "remembered";
      server.closesCrowds = false;
      server.MemoryFtp::packets = MemoryFtp::Packets::taken;
    }
  }
}

// --- Errands ---

TEST_F(LoginPackets, OfAnErrandThatIsNotDoneAreForgotten) {
  meet(2);
  const auto connection = loginFor(Kind::download);
  EXPECT_EQ(errorOf([&] { return connection->Remove("/f"); }), 0u);
  EXPECT_TRUE(works(*connection));
}

// In the directory that it was sent to relative names would mean something else.
TEST_F(LoginPackets, ThatHaveMovedTheServerForNothingEndTheConnection) {
  meet(2);
  server.answers["CWD"] = "550 No directory\r\n";
  CFtpFileFind(loginFor(Kind::find).get()).FindFile("/f");  // learns what the server can do
  const auto connection = loginFor(Kind::find);
  EXPECT_EQ(server.packets.back(), (Packet{"USER user", "PASS secret", "CWD /f", "TYPE I", "SIZE /f"}));
  EXPECT_EQ(errorOf([&] { return connection->Remove("f"); }), 12030u);
  EXPECT_EQ(std::count(server.lines.begin(), server.lines.end(), "DELE f"), 0);
}

TEST_F(LoginPackets, OfASearchAskNoWayBack) {
  meet(2);
  server.answers["CWD"] = "550 No directory\r\n";
  for (int i = 0; i < 2; ++i) {
    const auto connection = loginFor(Kind::find);
    CFtpFileFind finder(connection.get());
    EXPECT_TRUE(finder.FindFile("/f"));
  }
  EXPECT_EQ(std::count(server.lines.begin(), server.lines.end(), "PWD"), 0);
}

TEST_F(LoginPackets, ChangeNothingOnTheServer) {
  meet(2);
  const auto renaming = loginFor(Kind::rename);
  EXPECT_EQ(server.packets.back(), (Packet{"USER user", "PASS secret", "RNFR /f"}));
  EXPECT_EQ(errorOf([&] { return renaming->Rename("/f", "/g"); }), 0u);
  EXPECT_EQ(server.packets.back(), Packet{"RNTO /g"});
  const auto uploading = loginFor(Kind::upload, "/up");
  EXPECT_EQ(server.packets.back(), (Packet{"USER user", "PASS secret", "TYPE I", "EPSV"}));
}

TEST_F(LoginPackets, HoldNoNameThatMayNotBeSent) {
  meet(2);
  const auto connection = loginFor(Kind::rename, "/f\r\nDELE /f");
  EXPECT_EQ(server.packets.back(), (Packet{"USER user", "PASS secret"}));
}

// --- Behind the login ---

TEST_F(LoginPackets, AnActiveServersPortAndTheDownloadGoTogetherOnceThatHasWorked) {
  meet(1, false);
  EXPECT_EQ(download(false), "abc");
  const Packet& last = server.packets[server.packets.size() - 2];
  EXPECT_EQ(last.size(), 2u);
  EXPECT_EQ(last.back(), "RETR /f");
  const auto told = session.takeStatuses();
  server.answers["EPRT"] = "501 Not now\r\n";
  server.answers["RETR"] = "425 Where to?\r\n";
  EXPECT_EQ(thrownBy([&] { download(false); }).error, 12003u) << "the refusal of the port";
  server.answers["EPRT"] = "200 Done\r\n";
  server.answers["RETR"] = "150 Here\r\n";
  session.takeStatuses();
  EXPECT_EQ(download(false), "abc");
  EXPECT_EQ(server.packets[server.packets.size() - 2], Packet{"RETR /f"}) << "step by step again";
  EXPECT_EQ(session.takeStatuses(), told);
}

TEST_F(LoginPackets, DirectoriesAreMadeInOnePacketAndNotifiedOneByOne) {
  const std::vector<std::string> names{"/", "/a", "/a/b"};
  const auto make = [&] {
    const auto connection = loginFor(Kind::none);
    connection->WillCreate(names);
    for (const std::string& name : names) EXPECT_TRUE(connection->CreateDirectory(name.c_str()));
    return session.takeStatuses();
  };
  const auto oneByOne = make();
  EXPECT_EQ(server.packets[server.packets.size() - 2], Packet{"MKD /a/b"});
  meet(1);
  EXPECT_EQ(make(), oneByOne);
  EXPECT_EQ(server.packets[server.packets.size() - 2], (Packet{"MKD /", "MKD /a", "MKD /a/b"}));
}

// A long packet is answered before it has arrived whole, and nobody would read that.
TEST_F(LoginPackets, HaveALimit) {
  meet(2);
  const auto connection = loginFor(Kind::none);
  const std::vector<std::string> names(40, "/" + std::string(500, 'd'));
  connection->WillCreate(names);
  for (const std::string& name : names) EXPECT_TRUE(connection->CreateDirectory(name.c_str()));
  EXPECT_EQ(std::count(server.lines.begin(), server.lines.end(), "MKD " + names[0]), 40);
  for (const Packet& packet : server.packets) EXPECT_LE(packet.size(), 16u);
}

}  // namespace
}  // namespace internet_tests
