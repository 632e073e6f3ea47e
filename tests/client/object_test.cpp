// SPDX-License-Identifier: MIT
// The client object by itself: its fields as hosts see them, its reference count, its finders. How it ends:
// ending_test.cpp.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "framework/ModuleState.h"
#include "framework/internet/FtpFileFind.h"
#include "tests/client/RecordingClient.h"

namespace {

// A field read as a host does that knows only its offset.
template <typename Value>
Value at(const TQXIPIFInt& client, std::size_t offset) {
  Value value;
  std::memcpy(&value, reinterpret_cast<const char*>(&client) + offset, sizeof value);
  return value;
}

std::string textAt(const TQXIPIFInt& client, std::size_t offset) {
  return reinterpret_cast<const char*>(&client) + offset;
}

// A client of the library's own class, freed as hosts free it.
struct OwnClient {
  explicit OwnClient(QXErrorInfo* pErrorInfo = nullptr, QXBool bOption = 0)
      : client(new TQXIP(pErrorInfo, bOption)) {}
  ~OwnClient() {
    if (client != nullptr) client->Release();
  }
  TQXIP* client;
};

TEST(FreshClient, HasTheDocumentedFields) {
  const OwnClient own;
  const TQXIP& client = *own.client;
  EXPECT_EQ(client.m_nRefCount, 1u);
  EXPECT_EQ(client.m_bOption, 0);
  EXPECT_EQ(client.m_Transfer.bValid, 0);
  EXPECT_EQ(client.m_Transfer.nTransferred, 0u);
  EXPECT_EQ(client.m_Transfer.nTotal, 0u);
  EXPECT_EQ(client.m_pFileBuffer, nullptr);
  EXPECT_STREQ(client.m_RemoteSystem, "");
  EXPECT_STREQ(client.m_UserName, "");
  EXPECT_STREQ(client.m_Password, "");
  EXPECT_EQ(client.m_nPort, 21u);
  EXPECT_EQ(client.m_bPassive, 0);
  EXPECT_STREQ(client.m_szMessage, "");
  EXPECT_EQ(client.m_bCreated, 1);
  EXPECT_EQ(client.m_bInitialized, 1);
  EXPECT_EQ(client.m_bConnected, 0);
  EXPECT_EQ(client.m_bSpare, 0);
}

TEST(FreshClient, HasASessionButNoConnectionAndNoFinders) {
  const OwnClient own;
  const TQXIP& client = *own.client;
  EXPECT_NE(client.m_pInternetSession, nullptr);
  EXPECT_EQ(client.m_pFtpConnection, nullptr);
  EXPECT_EQ(client.m_pFTPFileFind, nullptr);
  EXPECT_EQ(client.m_pFTPDirFind, nullptr);
  EXPECT_EQ(client.m_pFTPGetDir, nullptr);
  EXPECT_EQ(client.m_pFTPFileSize, nullptr);
}

TEST(FreshClient, KeepsItsErrorRecordAndItsOption) {
  QXErrorInfo record{};
  const OwnClient own(&record, 1);
  EXPECT_EQ(own.client->m_pErrorInfo, &record);
  EXPECT_EQ(own.client->m_bOption, 1);
  const OwnClient silent;
  EXPECT_EQ(silent.client->m_pErrorInfo, nullptr);
}

TEST(FreshClient, DoesNotTouchTheErrorRecord) {
  QXErrorInfo record;
  std::memset(&record, 0xA5, sizeof record);
  const QXErrorInfo before = record;
  { const OwnClient own(&record); }
  EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0);
}

TEST(ClientFields, StandWhereHostsReadThem) {
  QXErrorInfo record{};
  const OwnClient own(&record);
  TQXIP& client = *own.client;
  client.AddRef();
  client.FTPSetLogin("ftp://host", "user", "secret", 2121, 1);
  std::snprintf(client.m_szMessage, sizeof client.m_szMessage, "line");
  client.m_Transfer = {1, 0x1122334455667788u, 0x99};
  client.m_bConnected = 1;
  EXPECT_EQ(at<std::uint32_t>(client, 8), 2u);
  EXPECT_EQ(at<std::uint8_t>(client, 32), 0u);
  EXPECT_EQ(at<std::uint8_t>(client, 40), 1u);
  EXPECT_EQ(at<std::uint64_t>(client, 48), 0x1122334455667788u);
  EXPECT_EQ(at<std::uint64_t>(client, 56), 0x99u);
  EXPECT_EQ(textAt(client, 72), "host");
  EXPECT_EQ(textAt(client, 105), "user");
  EXPECT_EQ(textAt(client, 170), "secret");
  EXPECT_EQ(at<std::uint32_t>(client, 428), 2121u);
  EXPECT_EQ(at<std::uint8_t>(client, 432), 1u);
  EXPECT_EQ(textAt(client, 433), "line");
  EXPECT_EQ(at<std::uint8_t>(client, 4577), 1u);
  EXPECT_EQ(at<std::uint8_t>(client, 4578), 1u);
  EXPECT_EQ(at<std::uint8_t>(client, 4579), 1u);
  EXPECT_EQ(at<void*>(client, 4624), client.m_pInternetSession);
  EXPECT_EQ(at<QXErrorInfo*>(client, 4632), &record);
  client.m_bConnected = 0;
  client.Release();
}

TEST(ReferenceCount, GoesUpAndDown) {
  const OwnClient own;
  EXPECT_EQ(own.client->AddRef(), 2u);
  EXPECT_EQ(own.client->AddRef(), 3u);
  EXPECT_EQ(own.client->Release(), 2u);
  EXPECT_EQ(own.client->Release(), 1u);
}

TEST(ReferenceCount, AtZeroTheClientIsDestroyed) {
  const std::uint32_t before = g_nModuleRefs;
  auto* client = new TQXIP(nullptr);
  EXPECT_EQ(g_nModuleRefs, before + 1);
  EXPECT_EQ(client->Release(), 0u);
  EXPECT_EQ(g_nModuleRefs, before);
}

TEST(ReferenceCount, ReleaseOfACountOfZeroAnswersZeroAndDestroysNothing) {
  const std::uint32_t before = g_nModuleRefs;
  OwnClient own;
  own.client->m_nRefCount = 0;
  EXPECT_EQ(own.client->Release(), 0u);
  EXPECT_EQ(own.client->m_bInitialized, 1);
  EXPECT_EQ(g_nModuleRefs, before + 1);
  own.client->m_nRefCount = 1;
}

class GetFinder : public testing::Test {
 protected:
  RecordingClient client;

  void SetUp() override {
    for (CFtpFileFind** finder :
         {&client.m_pFTPFileFind, &client.m_pFTPDirFind, &client.m_pFTPGetDir, &client.m_pFTPFileSize}) {
      *finder = new CFtpFileFind(nullptr);
    }
  }
};

TEST_F(GetFinder, FindsEachOfTheFourByItsName) {
  EXPECT_EQ(client.GetFinder(0, "m_pFTPFileFind"), client.m_pFTPFileFind);
  EXPECT_EQ(client.GetFinder(0, "m_pFTPDirFind"), client.m_pFTPDirFind);
  EXPECT_EQ(client.GetFinder(0, "m_pFTPGetDir"), client.m_pFTPGetDir);
  EXPECT_EQ(client.GetFinder(0, "m_pFTPFileSize"), client.m_pFTPFileSize);
}

TEST_F(GetFinder, IgnoresTheCaseOfTheName) {
  EXPECT_EQ(client.GetFinder(0, "M_PFTPDIRFIND"), client.m_pFTPDirFind);
  EXPECT_EQ(client.GetFinder(0, "m_pftpfilesize"), client.m_pFTPFileSize);
}

TEST_F(GetFinder, IgnoresItsReservedArgument) {
  EXPECT_EQ(client.GetFinder(~QXHostValue{0}, "m_pFTPGetDir"), client.m_pFTPGetDir);
}

TEST_F(GetFinder, GivesNullForANullName) { EXPECT_EQ(client.GetFinder(0, nullptr), nullptr); }

TEST_F(GetFinder, GivesNullForAnotherNameWithoutAConnection) {
  EXPECT_EQ(client.GetFinder(0, "another"), nullptr);
  EXPECT_EQ(client.GetFinder(0, ""), nullptr);
  EXPECT_EQ(client.GetFinder(0, "m_pFTPFileFind "), nullptr);
}

TEST_F(GetFinder, GivesTheFieldEvenWhenItIsEmpty) {
  RecordingClient fresh;
  EXPECT_EQ(fresh.GetFinder(0, "m_pFTPDirFind"), nullptr);
}

TEST_F(GetFinder, OnConnectWithoutAConnectionDropsTheFindersAndMakesNone) {
  client.OnConnect();
  EXPECT_EQ(client.m_bConnected, 1);
  EXPECT_EQ(client.m_pFTPFileFind, nullptr);
  EXPECT_EQ(client.m_pFTPDirFind, nullptr);
  EXPECT_EQ(client.m_pFTPGetDir, nullptr);
  EXPECT_EQ(client.m_pFTPFileSize, nullptr);
}

}  // namespace
