// SPDX-License-Identifier: MIT
// Names where the process's narrow texts are UTF-8: bytes, whatever they are, both ways.
#include <nlohmann/json.hpp>

#include "framework/platform/code_page.h"
#include "tests/internet/FindTest.h"
#include "tests/support/ShownBytes.h"

namespace internet_tests {
namespace {

using fixture::ScriptedFtp;
using fixture::shown;
using nlohmann::json;

class NameBytes : public FindTest {
 protected:
  void SetUp() override { ASSERT_EQ(platform::narrowCodePage(), platform::kUtf8CodePage); }
};

TEST_F(NameBytes, GoOutAsTheyAre) {
  const ScriptedFtp server;
  const auto connection = connect(server);
  EXPECT_FALSE(connection->Remove("/5 \x80.txt"));
  EXPECT_EQ(server.commands().back(), shown("DELE /5 \x80.txt"));
  EXPECT_FALSE(connection->Remove("/5 \xE2\x82\xAC.txt"));
  EXPECT_EQ(server.commands().back(), shown("DELE /5 \xE2\x82\xAC.txt"));
  EXPECT_EQ(server.commandCount("FEAT"), 0) << "nothing depends on the answer";
}

TEST_F(NameBytes, ComeInAsTheyAre) {
  const ScriptedFtp server(
      json{{"tree", {{"/5 \xE2\x82\xAC/sch\xC3\xB6n", "x"}}}, {"home", "/5 \xE2\x82\xAC"}});
  const auto connection = connect(server);
  CFtpFileFind finder(connection.get());
  EXPECT_EQ(namesOf(search(finder, "/5 \xE2\x82\xAC/*").entries), Names{"sch\xC3\xB6n"});
  std::string directory;
  EXPECT_TRUE(connection->GetCurrentDirectory(directory));
  EXPECT_EQ(directory, "/5 \xE2\x82\xAC");
}

TEST_F(NameBytes, OfALatinServerComeInAsTheyAre) {
  const ScriptedFtp server(json{{"tree", {{"/d/sch\xC3\xB6n", "x"}}}, {"encoding", "latin-1"}});
  EXPECT_EQ(namesAt(server, "/d/*"), Names{"sch\xF6n"});
  EXPECT_EQ(namesAt(server, "/d/sch\xF6n"), Names{"sch\xF6n"});
}

TEST_F(NameBytes, InAServersTextStayAsTheyAre) {
  const ScriptedFtp server(
      json{{"rules", {{{"on", "DELE"}, {"do", {{{"reply", "550 no sch\xC3\xB6n/\xE2\x82\xAC"}}}}}}}});
  const auto connection = connect(server);
  EXPECT_FALSE(connection->Remove("/a"));
  EXPECT_EQ(connection->LastServerText(), "550 no sch\xC3\xB6n/\xE2\x82\xAC");
}

}  // namespace
}  // namespace internet_tests
