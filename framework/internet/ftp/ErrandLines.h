// SPDX-License-Identifier: MIT
// The first lines of an errand, told ahead to the connection that is made for it: those alone that ask or
// agree on something and change nothing.
#pragma once

#include <string_view>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/net/FtpErrand.h"

namespace internet {

class ErrandLines {
 public:
  explicit ErrandLines(FtpControl& control) noexcept : control_(control) {}
  // By what is known of the server; asks it nothing.
  void foresee(const FtpErrand& errand);

 private:
  [[nodiscard]] bool knowsNameOf(std::string_view path) const;
  void search(std::string_view path, bool content);
  void transfer(const FtpErrand& errand, std::string_view path);

  FtpControl& control_;
};

}  // namespace internet
