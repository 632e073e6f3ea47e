// SPDX-License-Identifier: MIT
#include "framework/ModuleState.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "framework/WinApp.h"
#include "framework/platform/process.h"

namespace {

// Runs `work` on four threads at once.
template <class Work>
void onFourThreads(Work work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}

TEST(ModuleState, TheGuardInstallsAndPutsBack) {
  AFX_MODULE_STATE* const own = AfxGetAppModuleState();
  AFX_MODULE_STATE hosts;
  EXPECT_EQ(AfxGetModuleState(), own);
  {
    const AFX_MAINTAIN_STATE2 outer(&hosts);
    EXPECT_EQ(AfxGetModuleState(), &hosts);
    EXPECT_EQ(AfxGetAppModuleState(), own);
    {
      const AFX_MAINTAIN_STATE2 inner(own);
      EXPECT_EQ(AfxGetModuleState(), own);
    }
    EXPECT_EQ(AfxGetModuleState(), &hosts);
    std::thread([own] { EXPECT_EQ(AfxGetModuleState(), own); }).join();
  }
  EXPECT_EQ(AfxGetModuleState(), own);
}

TEST(ModuleState, ANullStateIsTheModulesOwn) {
  const AFX_MAINTAIN_STATE2 guard(nullptr);
  EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
}

TEST(ModuleRefs, AnswerTheValueAfterTheChangeAndStayAtZero) {
  ASSERT_EQ(g_nModuleRefs, 0u);
  EXPECT_EQ(ReleaseModuleRef(), 0u);
  EXPECT_EQ(AddModuleRef(), 1u);
  EXPECT_EQ(AddModuleRef(), 2u);
  EXPECT_EQ(g_nModuleRefs, 2u);
  EXPECT_EQ(ReleaseModuleRef(), 1u);
  EXPECT_EQ(ReleaseModuleRef(), 0u);
  EXPECT_EQ(ReleaseModuleRef(), 0u);
}

TEST(ModuleRefs, AreCountedFromAnyThread) {
  onFourThreads([] {
    for (int i = 0; i < 5000; ++i) AddModuleRef();
    for (int i = 0; i < 4999; ++i) ReleaseModuleRef();
  });
  EXPECT_EQ(g_nModuleRefs, 4u);
  onFourThreads([] {
    for (int i = 0; i < 5000; ++i) ReleaseModuleRef();
  });
  EXPECT_EQ(g_nModuleRefs, 0u);
}

TEST(WinApp, IsTheModulesCurrentApplicationWhileItLives) {
  EXPECT_EQ(AfxGetApp(), nullptr);
  {
    const CWinApp app;
    EXPECT_EQ(AfxGetApp(), &app);
    EXPECT_EQ(app.m_pszAppName, nullptr);
  }
  EXPECT_EQ(AfxGetApp(), nullptr);
  {
    const CWinApp first("first");
    EXPECT_STREQ(first.m_pszAppName, "first");
    const CWinApp second("second");
    EXPECT_EQ(AfxGetApp(), &second);
  }
  EXPECT_EQ(AfxGetApp(), nullptr);
}

TEST(WinApp, AnEarlierOnesEndLeavesALaterOneInPlace) {
  auto earlier = std::make_unique<CWinApp>();
  const CWinApp later;
  earlier.reset();
  EXPECT_EQ(AfxGetApp(), &later);
}

TEST(WinApp, BelongsToTheInstalledState) {
  const CWinApp app;
  AFX_MODULE_STATE hosts;
  const AFX_MAINTAIN_STATE2 guard(&hosts);
  EXPECT_EQ(AfxGetApp(), nullptr);
}

TEST(WinInit, KeepsTheFirstHandleAndAlwaysSucceeds) {
  void* const program = platform::processModule();
  EXPECT_TRUE(AfxWinInit(program, nullptr, "", 0));
  EXPECT_EQ(AfxGetAppModuleState()->m_hCurrentInstanceHandle, program);
  int other = 0;
  EXPECT_TRUE(AfxWinInit(&other, nullptr, nullptr, 1));
  EXPECT_EQ(AfxGetAppModuleState()->m_hCurrentInstanceHandle, program);
}

TEST(Process, HasOneModuleHandle) {
  void* const program = platform::processModule();
  EXPECT_NE(program, nullptr);
  EXPECT_EQ(platform::processModule(), program);
}

TEST(Process, StartsTheCommonControlsRepeatedly) {
  platform::initCommonControls();
  platform::initCommonControls();
}

TEST(Process, StartsTheSocketsFromAnyThread) {
  onFourThreads([] {
    EXPECT_TRUE(platform::startSockets());
    EXPECT_TRUE(AfxSocketInit());
  });
}

}  // namespace
