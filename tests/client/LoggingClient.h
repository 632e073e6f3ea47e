// SPDX-License-Identifier: MIT
// A client whose host reads the protocol: it has put a function of its own into the slot of OnStatus.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Src/QXIP.h"

class LoggingClient final : public TQXIP {
 public:
  LoggingClient() : TQXIP(nullptr) {}
  ~LoggingClient() = default;

  void OnStatus(const char* text) override {
    const std::lock_guard lock(m_mutex);
    m_lines.emplace_back(text);
  }
  // What has come since the last call.
  std::vector<std::string> takeLines() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_lines, {});
  }

 private:
  std::mutex m_mutex;
  std::vector<std::string> m_lines;
};
