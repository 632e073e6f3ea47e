// SPDX-License-Identifier: MIT
// What the tests over a network in memory share.
#pragma once

#include <memory>

#include "tests/internet/FtpTest.h"
#include "tests/support/MemoryFtp.h"

namespace internet_tests {

// A server and the way to it.
struct Far {
  testing_support::MemoryFtp server;
  testing_support::MemoryNetwork network{server};
};

class FtpMemory : public FtpTest {
 protected:
  std::unique_ptr<CFtpConnection> login(bool passive = true) {
    return std::unique_ptr<CFtpConnection>(
        session.GetFtpConnection("127.0.0.1", "user", "secret", 21, passive));
  }
};

}  // namespace internet_tests
