// SPDX-License-Identifier: MIT
// Passwords stayed behind in the memory that clients had given back, wherever a copy had been: in the login
// of each connection, in its command lines, and in the client itself.
#include <array>
#include <memory>
#include <nlohmann/json.hpp>

#include "tests/client/TransferTest.h"
#include "tests/support/AllocationWatch.h"

namespace {

using fixture::ScriptedFtp;
using nlohmann::json;
using testing_support::FreedMemorySearch;

constexpr auto kOutgrown = [] {
  std::array<char, 1001> text{};
  for (std::size_t i = 0; i + 1 < text.size(); ++i) text[i] = static_cast<char>('A' + i * i % 57);
  return text;
}();

// None may be a std::string in this program. The first is so short that one would keep it within itself.
constexpr const char* kPasswords[] = {"Tr0ub4dor&3", "correct horse battery staple, and then some more of it",
                                      kOutgrown.data()};

class KeptSecret : public TransferTest, public testing::WithParamInterface<const char*> {
 protected:
  void connect(const ScriptedFtp& server, QXBool expected = 1) {
    EXPECT_EQ(own->FTPConnect(server.host().c_str(), "user", GetParam(), server.port(), 1, 0, nullptr),
              expected);
  }
  void setLogin(const ScriptedFtp& server) {
    own->FTPSetLogin(server.host().c_str(), "user", GetParam(), server.port(), 1);
  }
  void end() {
    own.reset();
    EXPECT_EQ(search.found(), 0);
  }
  [[nodiscard]] bool isInClient() const {
    const std::string_view bytes(reinterpret_cast<const char*>(own.get()), sizeof *own);
    return bytes.find(kept()) != std::string_view::npos;
  }

  // A part that tells. A shorter text in its place hides the beginning, and a field has no room for all of
  // it.
  static std::string_view kept() { return std::string_view(GetParam()).substr(2, 8); }

  static constexpr const char* kTree = R"({"tree": {"/d/file": "content", "/d/sub/": {}}})";
  std::unique_ptr<RecordingClient> own = std::make_unique<RecordingClient>();
  FreedMemorySearch search{kept()};
};

TEST_P(KeptSecret, GoesWithAClientThatHasConnected) {
  const ScriptedFtp server(std::string_view{kTree});
  connect(server);
  EXPECT_EQ(own->FTPDirExist("/d/sub", 0, 0, 0), 1);
  end();
}

TEST_P(KeptSecret, GoesWithAClientThatHasNot) {
  const ScriptedFtp server;
  setLogin(server);
  EXPECT_TRUE(isInClient());
  end();
}

TEST_P(KeptSecret, GoesWithTheConnectionsOfOperations) {
  const ScriptedFtp server(std::string_view{kTree});
  setLogin(server);
  EXPECT_EQ(own->FTPDownloadFile("/d/file", local.c_str(), 0), 1);
  EXPECT_EQ(own->FTPWriteFile("/d/new", "text", 4, 0, 0, 0, 0, 0), 1);
  EXPECT_EQ(own->FTPRenameFile("/d/new", "/d/newer", 0), 1);
  EXPECT_EQ(own->FTPRmvFile("/d/newer", 0, 0, 0, 0), 1);
  std::uint32_t count = 0;
  EXPECT_EQ(own->FTPGetDirectory("/d", nullptr, &count, "*.*", 0), 1);
  end();
}

TEST_P(KeptSecret, GoesWithRetriesAndRefusedLogIns) {
  const ScriptedFtp server(std::string_view{R"({"user": "somebody else"})"});
  setLogin(server);
  EXPECT_EQ(own->FTPDownloadFile("/d/file", local.c_str(), 2), 0);
  connect(server, 0);
  end();
}

// The log-in that takes the place of a closed connection, and the one that asks for a size, have copies.
TEST_P(KeptSecret, GoesWithLogInsThatNobodySees) {
  const ScriptedFtp server(
      json{{"tree", {{"/d/file", "content"}}},
           {"rules", {{{"on", "STOR"}, {"do", {{{"normal", {{"final", "426 Lost"}}}}}}}}}});
  connect(server);
  server.disconnect("", "fin");
  server.waitUntilAllClosed();
  EXPECT_EQ(own->FTPFileExists("/d/file", 0, 0, 0), 1);
  write("text");
  EXPECT_EQ(own->FTPUploadFile("/d/new", local.c_str(), 0), 1);
  end();
}

TEST_P(KeptSecret, GoesWithTheLoginThatReplacesItAndWithADisconnect) {
  const ScriptedFtp server;
  setLogin(server);
  own->FTPSetLogin(server.host().c_str(), "user", "x", server.port(), 1);
  EXPECT_FALSE(isInClient());
  connect(server);
  EXPECT_EQ(own->FTPDisconnect(), 1);
  EXPECT_FALSE(isInClient());
  end();
}

std::string nameOf(const testing::TestParamInfo<const char*>& instance) {
  const char* const names[] = {"Short", "Long", "LongerThanItsField"};
  return names[instance.index];
}

INSTANTIATE_TEST_SUITE_P(Passwords, KeptSecret, testing::ValuesIn(kPasswords), nameOf);

}  // namespace
