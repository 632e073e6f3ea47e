// SPDX-License-Identifier: MIT
// A library that has encrypted connections comes and goes as any other; the system's TLS stays.
#include <cstdlib>
#include <filesystem>

#include "tests/dll/library.h"
#include "tests/support/Fixture.h"
#include "tests/support/ScratchFolder.h"

namespace {

TEST(Unloading, ALibraryThatHasEncryptedGoesAndComesAgain) {
  const fixture::ScriptedFtp server(R"({"tls": {}, "tree": {"/pub/": {}}})");
  const testing_support::ScratchFolder scratch;
  const std::string copy = scratch.file(clientLibraryName());
  std::filesystem::copy_file(std::getenv("QX_LIBRARY"), copy);
  for (int i = 0; i < 4; ++i) {
    const ClientLibrary loaded(copy);
    EXPECT_EQ(loaded.addRef(), 1U) << "round " << i << ": still loaded";
    QXErrorInfo error{};
    const Client client = makeClient(loaded, &error);
    ASSERT_NE(client, nullptr);
    const QXBool connected = loaded.connect(client.get(), "ftpes://127.0.0.1;verify=no", "me", "secret",
                                            server.port(), 1, 0, nullptr);
    EXPECT_EQ(connected, 1) << error.szText;
    EXPECT_EQ(client->FTPDirExist("/pub", 0, 0, 0), 1);
  }
}

}  // namespace
