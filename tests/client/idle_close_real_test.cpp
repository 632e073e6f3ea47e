// SPDX-License-Identifier: MIT
// Clients that a real server has told goodbye for their idleness.
#include "tests/client/IdleCloseTest.h"

namespace {

using IdleCloseReal = IdleCloseTest;

TEST_F(IdleCloseReal, VsftpdsTimeoutIsInvisibleToEveryOperation) {
  // Longer than a busy machine may keep an operation waiting between two of its commands.
  const fixture::RealServer server("vsftpd", R"({"extra": ["idle_session_timeout=5"]})");
  const std::string at = server.folder() + "/idle";
  server.put(treeAt(at));
  const auto clients = connectAll(server, server.user(), server.password());
  server.waitFor("{\"closed\": " + std::to_string(clients.size()) + "}");
  expectAllWork(clients, at);
  EXPECT_FALSE(server.exists(at + "/gone"));
}

}  // namespace
