// SPDX-License-Identifier: MIT
// Names of a host on their way to a server and back, by the rules of text/HostText.h where the server speaks
// UTF-8; a server that does not gets and gives bytes. The public classes call these at their edge: below it
// every path is the server's. Only inside FtpControl::request(): a name that would change asks whether the
// server speaks UTF-8, the first time, so ASCII costs no round trip.
#pragma once

#include <string>
#include <string_view>

#include "framework/internet/ftp/FtpControl.h"

namespace internet {

[[nodiscard]] std::string nameForServer(FtpControl& control, std::string_view name);
[[nodiscard]] std::string nameForHost(FtpControl& control, std::string name);

}  // namespace internet
