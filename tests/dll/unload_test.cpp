// SPDX-License-Identifier: MIT
// The library comes and goes: a copy of the file is a module of its own, with a count of its own.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <thread>

#include "QXClient.h"
#include "tests/dll/library.h"
#include "tests/support/ScratchFolder.h"

namespace {

TEST(Unloading, ALibraryThatIsLoadedAgainStartsAfresh) {
  const testing_support::ScratchFolder scratch;
  const std::string copy = scratch.file(clientLibraryName());
  std::filesystem::copy_file(std::getenv("QX_LIBRARY"), copy);
  for (int i = 0; i < 5; ++i) {
    const ClientLibrary loaded(copy);
    EXPECT_EQ(loaded.addRef(), 1U) << "round " << i;  // kept: only unloading forgets it
    QXErrorInfo error{};
    const Client client = makeClient(loaded, &error);
    ASSERT_NE(client, nullptr);
    EXPECT_EQ(client->FTPSetProxy("proxy.test", 0), 0);
    EXPECT_EQ(error.bSet, 1U);
  }
}

// A name lookup kept the library for the rest of the process.
TEST(Unloading, ALibraryThatHasLookedUpNamesGoesOnceTheLookupsAreOver) {
  const testing_support::ScratchFolder scratch;
  const std::string copy = scratch.file(clientLibraryName());
  std::filesystem::copy_file(std::getenv("QX_LIBRARY"), copy);
  {
    const ClientLibrary loaded(copy);
    loaded.addRef();  // only unloading forgets it
    QXErrorInfo error{};
    const Client client = makeClient(loaded, &error);
    ASSERT_NE(client, nullptr);
    for (int i = 0; i < 3; ++i) {
      // Nobody listens there, but the name is looked up.
      EXPECT_EQ(loaded.connect(client.get(), "localhost", "user", "secret", 1, 1, 0, nullptr), 0);
      EXPECT_EQ(error.nError, 12029U);
    }
  }
  // The lookups' threads may still be about to end.
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  for (bool fresh = false; !fresh; std::this_thread::yield()) {
    ASSERT_LT(std::chrono::steady_clock::now(), giveUp) << "still loaded";
    const ClientLibrary again(copy);
    fresh = again.addRef() == 1;
    again.release();
  }
}

// What qx::loadLibrary() hands out, and every client made with it, keeps the library.
TEST(Unloading, IsDoneWithTheLastCopyOfTheExports) {
  const testing_support::ScratchFolder scratch;
  const std::string copy = scratch.file(clientLibraryName());
  std::filesystem::copy_file(std::getenv("QX_LIBRARY"), copy);
  for (int round = 0; round < 2; ++round) {
    auto exports = std::make_optional(qx::loadLibrary(copy).value());
    EXPECT_EQ(exports->addRef(), 1U) << "kept: only unloading forgets it";
    auto client = std::make_optional(qx::Client::make(*exports).value());
    exports.reset();
    EXPECT_TRUE(client->setLogin({.host = "ftp.example.test"})) << "its library is still there";
  }
}

TEST(Unloading, AnotherLibraryIsRefusedWithTheSystemsText) {
#if defined(_WIN32)
  const auto other = qx::loadLibrary("kernel32.dll");
#else
  const auto other = qx::loadLibrary("libm.so.6");
#endif
  EXPECT_FALSE(other);
  EXPECT_NE(other.report().text, "");
}

}  // namespace
