// SPDX-License-Identifier: MIT
// Operations of a real client, called through the table by slot number as hosts without the header do.
#include <cstdint>

#include "tests/dll/library.h"

namespace {

enum Slot : std::size_t {
  kWipe = 2,
  kDestructor = 3,
  kAddRef = 4,
  kRelease = 5,
  kOnBeforeDisconnect = 6,
  kOnAfterDisconnect = 7,
  kOnConnect = 11,
  kOnDisconnect = 12,
  kOnPoll = 19,
  kFTPSetFirewall = 23,
  kFTPSetProxy = 24,
  kFTPSetLogin = 25,
  kFTPConnect = 26,
  kFTPReConnect = 27,
  kFTPDisconnect = 28,
  kGetFinder = 30,
  kFTPRmvFile = 41,
  kFTPFileSize = 46,
  kFTPRenameFile = 50,
};

using Text = const char*;

class Slots : public ClientTest {
 protected:
  template <typename Result, typename... Arguments>
  Result call(Slot slot, Arguments... arguments) {
    return callSlot<Result>(client.get(), slot, arguments...);
  }
};

TEST_F(Slots, ReferencesGoUpAndDown) {
  EXPECT_EQ(call<std::uint32_t>(kAddRef), 2U);
  EXPECT_EQ(call<std::uint32_t>(kAddRef), 3U);
  EXPECT_EQ(call<std::uint32_t>(kRelease), 2U);
  EXPECT_EQ(call<std::uint32_t>(kRelease), 1U);
  EXPECT_EQ(moduleCount(), 1U);
}

TEST_F(Slots, TheLastReleaseDestroys) {
  TQXIPIFInt* const last = client.release();
  EXPECT_EQ(callSlot<std::uint32_t>(last, kRelease), 0U);
  EXPECT_EQ(moduleCount(), 0U);
}

TEST_F(Slots, ReleaseAtZeroDoesNotDestroyAgain) {
  client->m_nRefCount = 0;
  EXPECT_EQ(call<std::uint32_t>(kRelease), 0U);
  EXPECT_EQ(moduleCount(), 1U);
  EXPECT_EQ(client->m_bInitialized, 1);
  client->m_nRefCount = 1;
}

TEST_F(Slots, DestructorWithFlag1EndsTheObjectAndItsMemory) {
  TQXIPIFInt* const ended = client.release();
  EXPECT_EQ(callSlot<void*>(ended, kDestructor, 1U), ended);
  EXPECT_EQ(moduleCount(), 0U);
}

TEST_F(Slots, DestructorWithFlag0EndsTheObjectAndLeavesItsMemory) {
  TQXIPIFInt* const ended = client.release();
  EXPECT_EQ(callSlot<void*>(ended, kDestructor, 0U), ended);
  EXPECT_EQ(moduleCount(), 0U);
  std::memset(static_cast<void*>(ended), 0xA5, sizeof(TQXIPIFInt));  // it is still there to be written
  ::operator delete(ended);  // these builds of host and library share the C heap
}

TEST_F(Slots, DestructorIgnoresTheOtherFlags) {
  TQXIPIFInt* const ended = client.release();
  EXPECT_EQ(callSlot<void*>(ended, kDestructor, 0xFFFFFFFDU), ended);
  EXPECT_EQ(moduleCount(), 0U);
}

TEST_F(Slots, SetLoginStoresTheBareHost) {
  EXPECT_EQ(
      call<QXBool>(kFTPSetLogin, Text("FTP://example.test"), Text("me"), Text("secret"), 2121U, QXBool{1}),
      1);
  EXPECT_STREQ(client->m_RemoteSystem, "example.test");
  EXPECT_STREQ(client->m_UserName, "me");
  EXPECT_STREQ(client->m_Password, "secret");
  EXPECT_EQ(client->m_nPort, 2121U);
  EXPECT_EQ(client->m_bPassive, 1);
}

TEST_F(Slots, SetProxyFailsAndFillsTheRecord) {
  EXPECT_EQ(call<QXBool>(kFTPSetProxy, Text("proxy.test:8080"), 0U), 0);
  EXPECT_EQ(error.bSet, 1U);
  EXPECT_EQ(error.nCode, 1000U);
  EXPECT_EQ(std::string(error.szText).rfind("TQXIP::FTPSetProxy failed! ", 0), 0U) << error.szText;
}

TEST_F(Slots, TheRecordKeepsTheFirstFailure) {
  EXPECT_EQ(call<QXBool>(kFTPSetFirewall, 1U, QXBool{0}, QXHostValue{0}), 0);
  const QXErrorInfo first = error;
  EXPECT_EQ(std::string(first.szText).rfind("TQXIP::FTPSetFirewall failed! ", 0), 0U) << first.szText;
  EXPECT_EQ(call<QXBool>(kFTPSetProxy, Text("proxy.test"), 0U), 0);
  EXPECT_EQ(std::memcmp(&error, &first, sizeof error), 0);
}

TEST_F(Slots, ConnectWithoutHostFails) {
  EXPECT_EQ(call<QXBool>(kFTPConnect, Text(nullptr), Text(""), Text(""), 21U, QXBool{0}, 0U,
                         static_cast<TInternetSession*>(nullptr)),
            0);
  EXPECT_EQ(error.bSet, 1U);
}

TEST_F(Slots, ReconnectDoesNothing) {
  EXPECT_EQ(call<QXBool>(kFTPReConnect, 3U, QXHostValue{0}), 1);
  EXPECT_EQ(error.bSet, 0U);
}

TEST_F(Slots, HooksFollowTheConnection) {
  EXPECT_EQ(call<QXBool>(kOnBeforeDisconnect), 1);
  EXPECT_EQ(call<QXBool>(kOnAfterDisconnect), 1);
  call<void>(kOnConnect);
  EXPECT_EQ(client->m_bConnected, 1);
  call<void>(kOnDisconnect);
  EXPECT_EQ(client->m_bConnected, 0);
}

TEST_F(Slots, DisconnectForgetsTheLoginOfAConnectedObjectOnly) {
  call<QXBool>(kFTPSetLogin, Text("example.test"), Text("me"), Text("secret"), 2121U, QXBool{1});
  EXPECT_EQ(call<QXBool>(kFTPDisconnect), 1);
  EXPECT_STREQ(client->m_RemoteSystem, "example.test");
  call<void>(kOnConnect);
  EXPECT_EQ(call<QXBool>(kFTPDisconnect), 1);
  EXPECT_STREQ(client->m_RemoteSystem, "");
  EXPECT_STREQ(client->m_Password, "");
  EXPECT_EQ(client->m_nPort, 21U);
  EXPECT_EQ(client->m_bPassive, 0);
}

TEST_F(Slots, PollLetsTheOperationGoOn) {
  QXBool reconnect = 0x77;
  EXPECT_EQ(call<QXBool>(kOnPoll, QXHostValue{1}, QXHostValue{2}, QXHostValue{0}, &reconnect), 0);
  EXPECT_EQ(reconnect, 0x77);
}

TEST_F(Slots, FindersAreKnownByNameInAnyCase) {
  int stand_in = 0;
  client->m_pFTPDirFind = reinterpret_cast<CFtpFileFind*>(&stand_in);
  EXPECT_EQ(call<CFtpFileFind*>(kGetFinder, QXHostValue{0}, Text("M_PFTPDIRFIND")), client->m_pFTPDirFind);
  client->m_pFTPDirFind = nullptr;
  EXPECT_EQ(call<CFtpFileFind*>(kGetFinder, QXHostValue{0}, Text("another")), nullptr);
  EXPECT_EQ(call<CFtpFileFind*>(kGetFinder, QXHostValue{0}, Text(nullptr)), nullptr);
}

// The object's bytes but for the message line.
std::string bytesWithoutMessage(const TQXIPIFInt* client) {
  std::string bytes(reinterpret_cast<const char*>(client), sizeof *client);
  return bytes.erase(433, sizeof client->m_szMessage);
}

TEST_F(Slots, WithoutRecordAFailureChangesTheMessageAlone) {
  const Client silent = makeClient(library(), nullptr);
  const std::string before = bytesWithoutMessage(silent.get());
  EXPECT_EQ(callSlot<QXBool>(silent.get(), kFTPSetProxy, Text("proxy.test"), 0U), 0);
  EXPECT_STREQ(silent->m_szMessage, "TQXIP::FTPSetProxy failed!");
  EXPECT_EQ(callSlot<QXBool>(silent.get(), kFTPRmvFile, Text(""), 0U, 0U, QXHostValue{0}, QXHostValue{0}), 0);
  EXPECT_EQ(callSlot<std::uint32_t>(silent.get(), kFTPFileSize, Text(""), 0U, QXHostValue{0}, QXHostValue{0}),
            0U);
  EXPECT_EQ(bytesWithoutMessage(silent.get()), before);
}

TEST_F(Slots, OperationsOnBothSidesOfTheDestructorAreTheirOwn) {
  EXPECT_EQ(call<QXBool>(kWipe, Text(nullptr)), 0);
  EXPECT_EQ(call<QXBool>(kWipe, Text("/file")), 1);
  EXPECT_EQ(call<QXBool>(kFTPRmvFile, Text(""), 0U, 0U, QXHostValue{0}, QXHostValue{0}), 0);
  EXPECT_STREQ(client->m_szMessage, "TQXIP::FTPRmvFile '' failed!");
}

TEST_F(Slots, TheLastOneIsRename) {
  EXPECT_EQ(call<QXBool>(kFTPRenameFile, Text("\n"), Text("/new"), 0U), 0);
  EXPECT_STREQ(client->m_szMessage, "TQXIP::FTPRenameFile from '\n' to '/new' failed!");
  EXPECT_EQ(error.bSet, 1U);
}

}  // namespace
