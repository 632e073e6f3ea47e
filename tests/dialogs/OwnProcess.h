// SPDX-License-Identifier: MIT
// Tests of what a process does only once: each runs in a process of its own.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace dialog_test {

// In a process that runs one test alone: runs `body`. Elsewhere: starts this program for the current test
// alone, and fails with its output unless it passes there.
void inOwnProcess(void (*body)());

// In a process of its own: an empty folder that is removed when that has ended. What it has loaded can be
// removed only then.
std::string ownFolder();

}  // namespace dialog_test

#define TEST_ALONE(suite, name)                                  \
  void suite##name();                                            \
  TEST(suite, name) { dialog_test::inOwnProcess(&suite##name); } \
  void suite##name()
