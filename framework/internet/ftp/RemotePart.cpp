// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/RemotePart.h"

namespace internet {

void RemotePart::open(FtpTransfer& transfer, std::string_view remote) {
  FtpControl& control = transfer.control();
  const bool goesOn = moved_ && isSame(control, remote);
  const auto time = goesOn_ && !goesOn ? control.askTimeAlong(remote) : nullptr;
  transfer.startAt(goesOn ? done_ : 0);
  try {
    transfer.open(remote);
  } catch (...) {
    moved_ = goesOn && !transfer.asked();
    throw;
  }
  moved_ = false;
  done_ = transfer.start();
  if (time) version_ = {transfer.size(), *time};
}

bool RemotePart::isSame(FtpControl& control, std::string_view remote) const {
  control.useBinary();
  const Version now{parseSizeReply(control.command("SIZE", remote)),
                    parseTimeReply(control.command("MDTM", remote))};
  return version_.known() && now == version_;
}

}  // namespace internet
