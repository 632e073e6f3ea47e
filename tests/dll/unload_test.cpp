// SPDX-License-Identifier: MIT
// The library comes and goes: a copy of the file is a module of its own, with a count of its own.
#include <cstdlib>
#include <filesystem>

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

}  // namespace
