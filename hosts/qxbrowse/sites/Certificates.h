// SPDX-License-Identifier: MIT
// What a failed connection tells of the server's certificate. Pure.
//
// Whoever has made a certificate has chosen the words in it, so they are believed nothing: what a pin is made
// of stands in front of them in the library's text, behind words that are its own.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "QXResult.h"

namespace browse {

struct ShownCertificate {
  std::string reason;       // the library's: what is wrong with it
  std::string fingerprint;  // SHA-256, 64 lower case hex digits
  std::string validFrom;    // "2026-11-21 21:39:09 UTC"; "" of one that cannot be read
  std::string validTo;
  // What the certificate says. Where the words leave open where one ends and the other begins, all of them
  // are in `subject`.
  std::string subject;
  std::string issuer;
};

// Of a login that has failed for a certificate that a user may decide about (12037, 12038, 12045, 12169);
// none for any other failure, a revoked certificate's included, and for a text that is not as it should be.
// `host` is the server's name as it stands in the text: Site::host.
std::optional<ShownCertificate> shownCertificate(const qx::Report& report, std::string_view host);

}  // namespace browse
