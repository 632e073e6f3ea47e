// SPDX-License-Identifier: MIT
// A host that puts its own functions into slots: the library calls them, with the host's arguments.
#include <string>
#include <vector>

#include "QXHooks.h"
#include "tests/dll/library.h"

namespace {

std::vector<std::string> g_calls;

class HostHooks : public ClientTest {
 protected:
  HostHooks() { g_calls.clear(); }
};

QXBool tellBefore(TQXIPIFInt*) {
  g_calls.emplace_back("before");
  return 1;
}

QXBool noteAfter(TQXIPIFInt*) {
  g_calls.emplace_back("after");
  return 1;
}

void noteDisconnect(TQXIPIFInt* client) {
  g_calls.emplace_back("disconnect");
  client->m_bConnected = 0;
}

void noteStatusText(TQXIPIFInt*, const char* text) { g_calls.emplace_back(text); }

QXBool noteDirExist(TQXIPIFInt*, const char* path, std::uint32_t retries, QXHostValue first,
                    QXHostValue second) {
  g_calls.push_back(path + (" " + std::to_string(retries)) + " " + std::to_string(first) + " " +
                    std::to_string(second));
  return 1;
}

void* noteDestruction(TQXIPIFInt* client, std::uint32_t flags) {
  g_calls.push_back("destroy " + std::to_string(flags));
  return client;
}

TEST_F(HostHooks, DisconnectCallsThemInOrder) {
  QXClientHooks hooks(client.get());
  hooks->OnBeforeDisconnect = &tellBefore;
  hooks->OnAfterDisconnect = &noteAfter;
  hooks->OnDisconnect = &noteDisconnect;
  client->OnConnect();
  EXPECT_EQ(client->FTPDisconnect(), 1);
  EXPECT_EQ(g_calls, (std::vector<std::string>{"before", "disconnect", "after"}));
}

TEST_F(HostHooks, StatusTextsGoToSlot22) {
  QXClientHooks hooks(client.get());
  hooks->OnStatusText = &noteStatusText;
  client->OnStatusCallback(1, 10, "example.test");
  client->OnStatusCallback(1, 40, nullptr);
  client->OnStatusCallback(1, 31, nullptr);
  EXPECT_EQ(g_calls, (std::vector<std::string>{"Resolving name example.test", "Request sent"}));
}

TEST_F(HostHooks, IsDirectoryAsksSlot36WithItsOwnArguments) {
  QXClientHooks hooks(client.get());
  hooks->FTPDirExist = &noteDirExist;
  constexpr QXHostValue kLarge = 0xFEDCBA9876543210;
  EXPECT_EQ(client->FTPIsDirectory("/pub", 3, 7, kLarge), 1);
  EXPECT_EQ(g_calls, (std::vector<std::string>{"/pub 3 7 " + std::to_string(kLarge)}));
}

TEST_F(HostHooks, TheLastReleaseDestroysThroughSlot3) {
  QXClientHooks hooks(client.get());
  hooks->DeletingDestructor = &noteDestruction;
  EXPECT_EQ(client->Release(), 0U);
  EXPECT_EQ(g_calls, (std::vector<std::string>{"destroy 1"}));
  EXPECT_EQ(client->m_nRefCount, 0U);
  client->m_nRefCount = 1;
}

}  // namespace
