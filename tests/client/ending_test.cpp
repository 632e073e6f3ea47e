// SPDX-License-Identifier: MIT
// The end of a client by itself: what it calls, what it leaves, and that it comes once.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>

#include "Src/QXIP.h"
#include "framework/ModuleState.h"

namespace {

TEST(Destructor, FreesTheMemoryOnlyWhenAsked) {
  const std::uint32_t before = g_nModuleRefs;
  alignas(TQXIP) unsigned char memory[sizeof(TQXIP)];
  auto* client = new (memory) TQXIP(nullptr);
  EXPECT_EQ(client->DeletingDestructor(0), static_cast<void*>(memory));
  EXPECT_EQ(g_nModuleRefs, before);

  auto* heaped = new TQXIP(nullptr);
  heaped->DeletingDestructor(1);
  EXPECT_EQ(g_nModuleRefs, before);
}

// What hosts may still look at.
TEST(Destructor, LeavesTheFlagsOfAClientThatIsNeitherUpNorConnected) {
  alignas(TQXIP) unsigned char memory[sizeof(TQXIP)];
  const volatile unsigned char* const bytes = memory;
  for (const QXBool initialized : {QXBool{1}, QXBool{0}}) {
    auto* client = new (memory) TQXIP(nullptr);
    client->m_bInitialized = initialized;
    client->m_bConnected = 1;
    client->DeletingDestructor(0);
    EXPECT_EQ(bytes[4578], 0) << "m_bInitialized";
    EXPECT_EQ(bytes[4579], 0) << "m_bConnected";
  }
  ReleaseModuleRef();  // the second one, which was not up, has kept its own
}

// Three of the fields used to keep what was in them.
TEST(Destructor, LeavesNothingInTheFieldsThatItReleases) {
  alignas(TQXIP) unsigned char memory[sizeof(TQXIP)];
  const volatile unsigned char* const bytes = memory;
  auto* client = new (memory) TQXIP(nullptr);
  client->m_pFileBuffer = new QXDirEntry[1];
  client->m_bSpare = 1;
  client->DeletingDestructor(0);
  EXPECT_EQ(bytes[4580], 0) << "m_bSpare";
  for (std::size_t i = 0; i < sizeof(void*); ++i) {
    EXPECT_EQ(bytes[64 + i], 0) << "m_pFileBuffer, byte " << i;
    EXPECT_EQ(bytes[4624 + i], 0) << "m_pInternetSession, byte " << i;
  }
}

// A host with functions of its own in the slots that an end goes through.
class EndingHost final : public TQXIP {
 public:
  explicit EndingHost(std::string& calls) : TQXIP(nullptr), m_calls(calls) {}
  // What the first of them does besides; the caller's, for the library ends the client and not this class.
  const std::function<void()>* ends = nullptr;

  // Its memory is never the library's.
  void* DeletingDestructor(std::uint32_t /*nFlags*/) override { return TQXIP::DeletingDestructor(0); }
  QXBool OnBeforeDisconnect() override {
    noted("before");
    if (ends != nullptr) (*ends)();
    return 1;
  }
  QXBool OnAfterDisconnect() override { return noted("after"); }
  void OnDisconnect() override { noted("disconnect"); }

  // The hooks that the end of a client with these flags calls.
  static std::string callsAtTheEnd(QXBool initialized, QXBool connected) {
    std::string calls;
    alignas(EndingHost) unsigned char memory[sizeof(EndingHost)];
    auto* host = new (memory) EndingHost(calls);
    host->m_bInitialized = initialized;
    host->m_bConnected = connected;
    host->DeletingDestructor(0);
    return calls;
  }

 private:
  ~EndingHost() = default;
  QXBool noted(const char* call) {
    m_calls += m_calls.empty() ? call : std::string(" ") + call;
    return 1;
  }
  std::string& m_calls;
};

TEST(Destructor, DisconnectsFirst) {
  EXPECT_EQ(EndingHost::callsAtTheEnd(1, 1), "before disconnect after");
  EXPECT_EQ(EndingHost::callsAtTheEnd(1, 0), "before after");
}

TEST(Destructor, OfAClientThatIsNotInitialisedCallsNothingAndLeavesTheCount) {
  const std::uint32_t before = g_nModuleRefs;
  EXPECT_EQ(EndingHost::callsAtTheEnd(0, 1), "");
  EXPECT_EQ(g_nModuleRefs, before + 1);
  ReleaseModuleRef();
}

// A host that uses the client once more in a hook of its end: each of these ends was the beginning of another
// one, until the stack was full.
class EndingOnce : public testing::Test {
 protected:
  // Ends a client whose OnBeforeDisconnect does `use`. The number of ends that came of it.
  template <typename Use>
  static std::size_t endsWhen(Use use, void (*end)(TQXIP& client)) {
    std::string calls;
    alignas(EndingHost) unsigned char memory[sizeof(EndingHost)];
    auto* host = new (memory) EndingHost(calls);
    std::size_t ends = 0;
    const std::function<void()> once = [&] {
      if (++ends < 3) use(*host);
    };
    host->ends = &once;
    end(*host);
    return ends;
  }
};

void releaseLast(TQXIP& client) { client.Release(); }
void destroyInPlace(TQXIP& client) { client.DeletingDestructor(0); }

TEST_F(EndingOnce, ThoughAHookTakesAReferenceAndReleasesIt) {
  const auto use = [](TQXIP& client) {
    const std::uint32_t before = client.m_nRefCount;
    EXPECT_EQ(client.AddRef(), before + 1);
    EXPECT_EQ(client.Release(), before);
  };
  EXPECT_EQ(endsWhen(use, &releaseLast), 1u);
  EXPECT_EQ(endsWhen(use, &destroyInPlace), 1u);
}

TEST_F(EndingOnce, ThoughAHookReleasesTheClientThatIsDestroyedInItsSlot) {
  EXPECT_EQ(endsWhen([](TQXIP& client) { EXPECT_EQ(client.Release(), 0u); }, &destroyInPlace), 1u);
}

TEST_F(EndingOnce, ThoughAHookDestroysTheClientAgain) {
  const auto use = [](TQXIP& client) {
    EXPECT_EQ(client.DeletingDestructor(0), static_cast<void*>(&client));
  };
  EXPECT_EQ(endsWhen(use, &destroyInPlace), 1u);
}

}  // namespace
