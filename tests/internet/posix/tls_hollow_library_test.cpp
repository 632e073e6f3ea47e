// SPDX-License-Identifier: MIT
// A system whose newest TLS library is not what its name says: hollow_library.cpp is found in its place.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "framework/platform/tls.h"

namespace platform {
namespace {

TEST(TlsHollowLibrary, IsPassedOver) {
  void* const hollow = ::dlopen("libssl.so.4", RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(hollow, nullptr);
  ASSERT_EQ(::dlsym(hollow, "SSL_new"), nullptr) << "this test's own";
  std::string reason;
  EXPECT_NE(makeTlsContext({.server = "localhost"}, reason), nullptr) << reason;
  ::dlclose(hollow);
}

}  // namespace
}  // namespace platform
