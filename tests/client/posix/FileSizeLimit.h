// SPDX-License-Identifier: MIT
// A limit on file sizes, which stands in for a full disk.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

// No file of this process grows beyond `bytes` while the object lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &m_before), 0);
    const rlimit limit{bytes, m_before.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*m_handler)(int);
  rlimit m_before{};
};
