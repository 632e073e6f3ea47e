// SPDX-License-Identifier: MIT
// A progress callback of copies that notes its calls. The callback is a plain function, so there is one log
// for the whole program; an object of this class clears it. Read it when the copy has ended.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "QXIPInt.h"

class ProgressLog {
 public:
  struct Call {
    std::string path;
    std::uint32_t percent;
    std::uint32_t third;
    bool operator==(const Call&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Call& call) {
      return out << call.path << ' ' << call.percent << ' ' << call.third;
    }
  };

  ProgressLog() { clear(); }
  ~ProgressLog() { clear(); }
  ProgressLog(const ProgressLog&) = delete;
  ProgressLog& operator=(const ProgressLog&) = delete;

  static std::vector<Call>& calls() {
    static std::vector<Call> all;
    return all;
  }
  // What the callback answers, asked after the call was noted. None: 0.
  static std::function<QXBool()>& stop() {
    static std::function<QXBool()> answer;
    return answer;
  }
  static QXBool note(const char* path, std::uint32_t percent, std::uint32_t third) {
    calls().push_back({path, percent, third});
    return stop() ? stop()() : QXBool{0};
  }

  static void clear() {
    calls().clear();
    stop() = nullptr;
  }
  [[nodiscard]] std::vector<std::uint32_t> percentages() const {
    std::vector<std::uint32_t> all;
    for (const Call& call : calls()) all.push_back(call.percent);
    return all;
  }
};
