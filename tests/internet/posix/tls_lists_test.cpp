// SPDX-License-Identifier: MIT
// Lists of revoked certificates in the system's store: what OpenSSL makes of those that it does not like.
#include <gtest/gtest.h>

#include "tests/internet/TlsPeer.h"

namespace internet::tls_testing {
namespace {

std::uint32_t errorAt(const char* certificate) {
  Peer peer(std::string(R"({"certificate": ")") + certificate + R"("})");
  return failureOf([&] { peer.control(); }).error;
}

TEST(TlsLists, AnAuthorityThatHasNoneIsNoFault) { EXPECT_EQ(errorAt("chain"), 0u); }

TEST(TlsLists, AnOldOneIsNoFault) { EXPECT_EQ(errorAt("old-list"), 0u); }

TEST(TlsLists, WhatAnOldOneNamesIsRevoked) { EXPECT_EQ(errorAt("revoked-by-old-list"), kCertificateRevoked); }

}  // namespace
}  // namespace internet::tls_testing
