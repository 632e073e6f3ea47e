// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "framework/platform/process.h"
#include "module/App.h"

namespace {

TEST(Application, IsTheOneOfItsModule) { EXPECT_EQ(AfxGetApp(), &theApp); }

TEST(Application, HasNoName) { EXPECT_EQ(theApp.m_pszAppName, nullptr); }

TEST(Application, KeepsTheHandleOfTheProgram) {
  EXPECT_NE(g_hProcessModule, nullptr);
  EXPECT_EQ(g_hProcessModule, platform::processModule());
}

}  // namespace
