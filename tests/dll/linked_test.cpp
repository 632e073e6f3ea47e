// SPDX-License-Identifier: MIT
// A host that is linked with the library.
#include <gtest/gtest.h>

#include "QXClient.h"

namespace {

TEST(Linked, AHostNeedsNoLoading) {
  const qx::Exports exports = qx::linkedExports();
  EXPECT_EQ(exports.addRef(), 1U);
  {
    qx::Client client = qx::Client::make(exports).value();
    EXPECT_EQ(exports.addRef(), 3U);
    EXPECT_EQ(exports.release(), 2U);
    EXPECT_TRUE(client.setLogin({.host = "ftp.example.test"}));
    EXPECT_STREQ(client.get()->m_RemoteSystem, "ftp.example.test");
    EXPECT_STREQ(client.get()->m_UserName, "anonymous");
    EXPECT_EQ(exports.connect(nullptr, "", "", "", 21, 1, 0, nullptr), 0);
  }
  EXPECT_EQ(exports.release(), 0U);
}

}  // namespace
