// SPDX-License-Identifier: MIT
// What a host that has closed its standard streams reads and writes there by mistake. It went into files and
// control connections, which had their numbers.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "framework/platform/file.h"
#include "framework/platform/socket.h"
#include "tests/support/ScratchFolder.h"

namespace {

using platform::Socket;

class ClosedStandardInput : public testing::Test {
 protected:
  ClosedStandardInput() { EXPECT_EQ(::close(STDIN_FILENO), 0); }
  ~ClosedStandardInput() override {
    EXPECT_TRUE(isFree());
    ::dup2(m_before, STDIN_FILENO);
    ::close(m_before);
  }
  static bool isFree() { return ::fcntl(STDIN_FILENO, F_GETFD) < 0; }

  const testing_support::ScratchFolder folder;

 private:
  const int m_before = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
};

TEST_F(ClosedStandardInput, IsNoFile) {
  platform::File file;
  ASSERT_TRUE(
      file.open(folder.file("new").c_str(), platform::FileAccess::write, platform::FileCreation::createNew));
  EXPECT_TRUE(isFree());
  EXPECT_TRUE(file.write("x", 1));
  EXPECT_NE(::fcntl(static_cast<int>(file.nativeHandle()), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(ClosedStandardInput, IsNoSocket) {
  platform::SocketAddress loopback;
  loopback.host = {127, 0, 0, 1};
  Socket listener;
  ASSERT_TRUE(listener.listen(loopback));
  EXPECT_TRUE(isFree());
  Socket client;
  ASSERT_NE(client.connect(*listener.localAddress()), platform::IoStatus::failed);
  EXPECT_TRUE(isFree());
  platform::SocketInterest interest{.socket = &listener, .read = true};
  ASSERT_EQ(platform::waitForSockets({&interest, 1}, std::chrono::seconds(60)), platform::Wake::ready);
  Socket taken;
  platform::SocketAddress peer;
  ASSERT_EQ(listener.accept(taken, peer), platform::IoStatus::done);
  EXPECT_TRUE(isFree());
}

}  // namespace
