// SPDX-License-Identifier: MIT
// An OnPoll that goes on asking for a reconnect: each run was made inside the one before it, until the stack
// was full.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include "tests/client/ServerTest.h"
#include "tests/client/SlotHost.h"

namespace {

constexpr int kReconnects = 300;
constexpr std::uintptr_t kMostStack = 16U << 10;  // a call of an operation takes a kilobyte

// Every worker waits for the reply to its log-in.
constexpr const char* kStalls = R"({"rules": [{"on": "USER", "do": [{"gate": "never"}]}]})";

// Asks for a reconnect so many times, then cancels.
class Asker {
 public:
  QXBool operator()(QXBool* reconnect) {
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    m_lowest = std::min(m_lowest, here);
    m_highest = std::max(m_highest, here);
    *reconnect = ++m_asked <= kReconnects ? 1 : 0;
    return *reconnect == 0 ? 1 : 0;
  }
  [[nodiscard]] int asked() const { return m_asked; }
  [[nodiscard]] std::uintptr_t spread() const { return m_highest - m_lowest; }

 private:
  int m_asked = 0;
  std::uintptr_t m_lowest = std::numeric_limits<std::uintptr_t>::max();
  std::uintptr_t m_highest = 0;
};

struct Operation {
  const char* name;
  QXBool (*call)(TQXIP& client);
  const char* lastLine;
};

QXBool writeFile(TQXIP& client) { return client.FTPWriteFile("/f", "x", 1, 0, 0, 5, 0, 0); }
QXBool readFile(TQXIP& client) {
  void* data = nullptr;
  std::uint32_t size = 0;
  return client.FTPReadFile("/f", &data, &size, 0, 5, 0, 0);
}
QXBool copyFile(TQXIP& client) { return client.FTPCpyFile("/f", "/g", nullptr, 5, 0, 0); }
QXBool removeFile(TQXIP& client) { return client.FTPRmvFile("/f", 0, 5, 0, 0); }

constexpr Operation kOperations[] = {
    {"FTPWriteFile", &writeFile, "TQXIP::FTPWriteFile '/f' failed!"},
    {"FTPReadFile", &readFile, "TQXIP::FTPReadFile '/f' failed!"},
    {"FTPCpyFile", &copyFile, "TQXIP::FTPCpyFile from '/f' to '/g' failed!"},
    {"FTPRmvFile", &removeFile, "TQXIP::FTPRmvFile '/f' failed!"},
};

class EndlessReconnect : public ServerTest, public testing::WithParamInterface<Operation> {
 protected:
  const fixture::ScriptedFtp server{kStalls};
};

TEST_P(EndlessReconnect, TakesNoStack) {
  loginAt(server);
  Asker asker;
  client.poll = [&](QXHostValue, QXHostValue, QXHostValue, QXBool* reconnect) { return asker(reconnect); };
  EXPECT_EQ(GetParam().call(client), 0);
  EXPECT_EQ(asker.asked(), kReconnects + 1);
  EXPECT_LT(asker.spread(), kMostStack);
  EXPECT_STREQ(client.m_szMessage, GetParam().lastLine);
}

INSTANTIATE_TEST_SUITE_P(Of, EndlessReconnect, testing::ValuesIn(kOperations),
                         [](const auto& instance) { return instance.param.name; });

using EndlessReconnectOfADirectory = ServerTest;

TEST_F(EndlessReconnectOfADirectory, TakesNoStackAndLooksBeforeEachRun) {
  const fixture::ScriptedFtp server(kStalls);
  SlotHost host;
  host.FTPSetLogin(server.host().c_str(), "user", "secret", server.port(), 1);
  Asker asker;
  host.poll = [&](QXBool* reconnect) { return asker(reconnect); };
  host.dirExist = [](const char*, std::uint32_t) -> QXBool { return 1; };
  EXPECT_EQ(host.FTPRmvDir("/e", 5, 0, 0), 0);
  EXPECT_EQ(asker.asked(), kReconnects + 1);
  EXPECT_LT(asker.spread(), kMostStack);
  const auto calls = host.calls();
  ASSERT_EQ(calls.size(), kReconnects + 1u);
  EXPECT_EQ(calls.front(), "FTPDirExist /e 5");
  EXPECT_EQ(calls.back(), "FTPDirExist /e 1");
}

}  // namespace
