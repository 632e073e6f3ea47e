// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/HostNames.h"

#include "framework/platform/code_page.h"
#include "framework/text/AsciiText.h"
#include "framework/text/HostText.h"

namespace internet {

std::string nameForServer(FtpControl& control, std::string_view name) {
  std::string converted = hosttext::pathForServer(name, platform::narrowCodePage());
  return converted == name || control.speaksUtf8() ? converted : std::string(name);
}

std::string nameForHost(FtpControl& control, std::string name) {
  if (ascii::isAscii(name)) return name;  // nearly all of a listing's
  std::string converted = hosttext::pathForHost(name, platform::narrowCodePage());
  return converted == name || control.speaksUtf8() ? converted : name;
}

}  // namespace internet
