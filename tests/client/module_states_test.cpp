// SPDX-License-Identifier: MIT
// Operations run in the library's own framework state and give the caller's back, however they end. What a
// host has in its slots sees which state is installed.
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

#include "Src/QXIP.h"
#include "Src/TInternetSession.h"
#include "framework/ModuleState.h"
#include "framework/internet/net/NameLookup.h"
#include "tests/client/ScriptedFinder.h"

namespace {

class StateHost final : public TQXIP {
 public:
  explicit StateHost(QXErrorInfo* pErrorInfo) : TQXIP(pErrorInfo) {}
  ~StateHost() = default;

  ScriptedFinder finder;
  bool throws = false;
  std::atomic<int> looks{0};
  std::atomic<int> otherStates{0};  // looks that found another state than the library's

  QXBool OnBeforeDisconnect() override { return look(); }
  void OnIPError(std::uint32_t nError, const char* text, std::uint32_t* retries) override {
    look();
    TQXIP::OnIPError(nError, text, retries);
  }
  QXBool FTPReConnect(std::uint32_t, QXHostValue) override { return look(); }
  void OnConnect() override { look(); }
  void OnNotify(QXHostValue) override { look(); }
  void OnStatusText(const char*) override { look(); }
  QXBool WipeWith(const char*, std::uint32_t, std::uint32_t) override { return look(); }
  CFtpFileFind* GetFinder(QXHostValue, const char*) override {
    look();
    return &finder;
  }

 private:
  QXBool look() {
    ++looks;
    if (AfxGetModuleState() != AfxGetAppModuleState()) ++otherStates;
    if (throws) throw std::runtime_error("the host's own");
    return 1;
  }
};

struct Entry {
  const char* name;
  void (*run)(StateHost& host);
};

std::uint32_t g_count = 0;

const Entry kEntries[] = {
    {"Disconnect", [](StateHost& host) { host.FTPDisconnect(); }},
    {"Connect", [](StateHost& host) { host.FTPConnect("nowhere.test", "", "", 21, 1, 0, nullptr); }},
    {"IPError",
     [](StateHost& host) {
       std::uint32_t retries = 0;
       host.TQXIP::OnIPError(12002, "text", &retries);
     }},
    {"StatusCallback", [](StateHost& host) { host.OnStatusCallback(1, 20, nullptr); }},
    {"StatusDispatcher",
     [](StateHost& host) {
       DispatchStatus({&host, host.m_pErrorInfo}, 1, 20, nullptr, 0);
     }},
    {"GetDirectory", [](StateHost& host) { host.FTPGetDirectory("/", nullptr, &g_count, "*.*", 0); }},
    {"HasSubDir", [](StateHost& host) { host.FTPHasSubDir("/", 0); }},
    {"CountFolderItems", [](StateHost& host) { host.FTPCountFolderItems("/", nullptr, nullptr, 0); }},
    {"DirExist", [](StateHost& host) { host.FTPDirExist("/x", 0, 0, 0); }},
    {"IsDirectory", [](StateHost& host) { host.FTPIsDirectory("/x", 0, 0, 0); }},
    {"FileExists", [](StateHost& host) { host.FTPFileExists("/x", 0, 0, 0); }},
    {"FileSize", [](StateHost& host) { host.FTPFileSize("/x", 0, 0, 0); }},
    {"Download", [](StateHost& host) { host.FTPDownloadFile("/x", "local", 0); }},
    {"Upload", [](StateHost& host) { host.FTPUploadFile("/x", "local", 0); }},
    {"RmvFile", [](StateHost& host) { host.FTPRmvFile("/x", 0, 0, 0, 0); }},
    {"FreeFileAPI", [](StateHost& host) { host.FTPFreeFileAPI(nullptr); }},
    {"Wipe", [](StateHost& host) { host.Wipe("/x"); }},
};

class EntryState : public testing::TestWithParam<Entry> {
 protected:
  void SetUp() override {
    internet::setResolverForTesting(
        [](const std::string&, std::uint16_t) { return std::vector<platform::SocketAddress>{}; });
    host.FTPSetLogin("nowhere.test", "user", "secret", 21, 1);
    host.m_bConnected = 1;
    host.finder.answersWith({{.name = "a"}});
  }
  void TearDown() override {
    host.throws = false;
    host.m_bConnected = 0;
    internet::setResolverForTesting(nullptr);
    EXPECT_EQ(AfxGetModuleState(), &hosts);
    EXPECT_GT(host.looks, 0);
    EXPECT_EQ(host.otherStates, 0);
  }

  QXErrorInfo record{};
  StateHost host{&record};
  AFX_MODULE_STATE hosts;
  AFX_MAINTAIN_STATE2 installed{&hosts};
};

TEST_P(EntryState, IsTheLibrarysAndThenTheHostsAgain) { GetParam().run(host); }

TEST_P(EntryState, IsTheHostsAgainAfterAnExceptionOfItsFunction) {
  host.throws = true;
  try {
    GetParam().run(host);
  } catch (const std::runtime_error&) {
  }
}

INSTANTIATE_TEST_SUITE_P(Entries, EntryState, testing::ValuesIn(kEntries),
                         [](const auto& instance) { return instance.param.name; });

TEST(ClientState, IsTheHostsAgainAfterCreationAndEnd) {
  AFX_MODULE_STATE hosts;
  const AFX_MAINTAIN_STATE2 installed(&hosts);
  auto* client = new TQXIP(nullptr);
  EXPECT_EQ(AfxGetModuleState(), &hosts);
  EXPECT_EQ(client->Release(), 0u);
  EXPECT_EQ(AfxGetModuleState(), &hosts);
}

}  // namespace
