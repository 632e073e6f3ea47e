// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/ErrandLines.h"

#include <string>

#include "framework/internet/ftp/FindRule.h"
#include "framework/internet/ftp/FtpDataChannel.h"
#include "framework/internet/ftp/HostNames.h"
#include "framework/text/AsciiText.h"

namespace internet {

void ErrandLines::foresee(const FtpErrand& errand) {
  using Kind = FtpErrand::Kind;
  if (errand.kind == Kind::none || !knowsNameOf(errand.path)) return;
  const std::string path = nameForServer(control_, errand.path);
  switch (errand.kind) {
    case Kind::find:
    case Kind::content:
      return search(path, errand.kind == Kind::content);
    case Kind::rename:
      static_cast<void>(control_.foresee("RNFR", path));
      return;
    case Kind::directory:
      static_cast<void>(control_.foresee("PWD"));
      return;
    default:
      return transfer(errand, path);
  }
}

// Without a question to the server.
bool ErrandLines::knowsNameOf(std::string_view path) const {
  const FtpTraits& known = control_.knownTraits();
  return ascii::isAscii(path) || known.utf8 || (known.featuresKnown && known.utf8ByOption);
}

// From a directory that is not known nobody goes to another one.
void ErrandLines::search(std::string_view path, bool content) {
  if (path.starts_with('/') && control_.knownTraits().featuresKnown)
    FindRule(control_, 0).foresee(path, content);
}

void ErrandLines::transfer(const FtpErrand& errand, std::string_view path) {
  const bool download = errand.kind == FtpErrand::Kind::download;
  const bool asksSize = download || errand.kind == FtpErrand::Kind::append || errand.goesOn;
  if (download && errand.goesOn && !control_.foresee("MDTM", path)) return;
  if (!control_.foreseeBinary()) return;
  if (asksSize && !control_.knownTraits().noSize && !control_.foresee("SIZE", path)) return;
  FtpDataChannel::foresee(control_);
}

}  // namespace internet
