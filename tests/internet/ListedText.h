// SPDX-License-Identifier: MIT
// A command that lists, and all that has come of it.
#pragma once

#include <string>
#include <string_view>

#include "framework/internet/ftp/FtpControl.h"

namespace internet_tests {

struct ListedText {
  internet::FtpReply reply;
  std::string text;
};

inline ListedText listedBy(internet::FtpControl& control, std::string_view verb,
                           std::string_view argument = {}) {
  ListedText listed;
  listed.reply = control.listing(verb, argument, [&](std::string_view piece) { listed.text += piece; });
  return listed;
}

}  // namespace internet_tests
