// SPDX-License-Identifier: MIT
// The names of two directories that differ in the second byte of a character alone, as 'A' and 'a' do. The
// walk over their folder once took the second for a repetition of the first and ended there.
#include <nlohmann/json.hpp>

#include "tests/client/ServerTest.h"

namespace {

class TwoByteDirectories : public ServerTest {};

TEST_F(TwoByteDirectories, AreToldApart) {
  const fixture::ScriptedFtp server(nlohmann::json{
      {"tree",
       {{"/d/\xE3\x82\xA2/", nlohmann::json::object()}, {"/d/\xE3\x83\x82/", nlohmann::json::object()}}}});
  loginAt(server);
  EXPECT_EQ(client.FTPDirExist("/d/\x83\x41", 0, 0, 0), 1);
  EXPECT_EQ(client.FTPDirExist("/d/\x83\x61", 0, 0, 0), 1);
  EXPECT_EQ(client.FTPDirExist("/d/\x83\x81", 0, 0, 0), 0);
}

}  // namespace
