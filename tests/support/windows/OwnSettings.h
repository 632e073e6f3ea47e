// SPDX-License-Identifier: MIT
// The user's Internet settings, for this process alone: HKEY_CURRENT_USER is a key of its own as long as this
// lives.
#pragma once

#include <cstdint>
#include <string>

#include "framework/windows/windows_api.h"

namespace testing_support {

struct InternetSettings {
  bool detects = false;
  std::string script;
  std::string proxies;
  std::string exceptions;
};

class OwnSettings {
 public:
  explicit OwnSettings(const InternetSettings& settings = {});
  ~OwnSettings();
  OwnSettings(const OwnSettings&) = delete;
  OwnSettings& operator=(const OwnSettings&) = delete;

  void set(const InternetSettings& settings) const;

 private:
  std::string path_;
  HKEY key_ = nullptr;
};

}  // namespace testing_support
