// SPDX-License-Identifier: MIT
// Lock files: one holder at a time, and nothing in the way afterwards.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "framework/platform/last_error.h"
#include "framework/platform/lock_file.h"
#include "tests/support/ScratchFolder.h"

namespace {

using platform::LockFile;

class LockFiles : public testing::Test {
 protected:
  testing_support::ScratchFolder folder;
  const std::string path = folder.file("lock");
};

TEST_F(LockFiles, HaveOneHolder) {
  LockFile first;
  ASSERT_TRUE(first.take(path.c_str()));
  EXPECT_TRUE(first.held());
  EXPECT_TRUE(std::filesystem::exists(path));
  LockFile second;
  platform::setLastError(77);
  EXPECT_FALSE(second.take(path.c_str()));
  EXPECT_EQ(platform::lastError(), platform::kErrorSharingViolation);
  EXPECT_NE(platform::systemErrorText(platform::kErrorSharingViolation), "");
  EXPECT_FALSE(second.held());
}

TEST_F(LockFiles, AreGivenUpAndDeletedWithTheirHolder) {
  {
    LockFile first;
    ASSERT_TRUE(first.take(path.c_str()));
    platform::setLastError(77);
  }
  EXPECT_EQ(platform::lastError(), 77u);
  EXPECT_FALSE(std::filesystem::exists(path));
  LockFile second;
  EXPECT_TRUE(second.take(path.c_str()));
}

TEST_F(LockFiles, ThatARefusedTakerLeavesAreStillHeld) {
  LockFile first;
  ASSERT_TRUE(first.take(path.c_str()));
  { EXPECT_FALSE(LockFile().take(path.c_str())); }
  EXPECT_FALSE(LockFile().take(path.c_str()));
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(LockFiles, LeftByADeadProcessAreTaken) {
  std::ofstream(path) << "of nobody";
  {
    LockFile lock;
    EXPECT_TRUE(lock.take(path.c_str()));
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(LockFiles, NeedAFolderAndAName) {
  LockFile lock;
  EXPECT_FALSE(lock.take(folder.file("none/lock").c_str()));
  EXPECT_EQ(platform::lastError(), platform::kErrorPathNotFound);
  EXPECT_FALSE(lock.take(folder.path().string().c_str())) << "a folder";
  EXPECT_FALSE(lock.take(""));
  EXPECT_FALSE(lock.take(nullptr));
}

// The end of one holder deletes the file, perhaps while the next one has it open already.
TEST_F(LockFiles, HaveOneHolderAmongManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kTakes = 300;
  std::atomic<int> inside = 0;
  std::atomic<int> taken = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int done = 0; done < kTakes;) {
        LockFile lock;
        if (!lock.take(path.c_str())) {
          std::this_thread::yield();
          continue;
        }
        EXPECT_EQ(++inside, 1);
        std::this_thread::yield();
        ++taken;
        ++done;
        --inside;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(taken, kThreads * kTakes);
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
