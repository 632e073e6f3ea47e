// SPDX-License-Identifier: MIT
// Who a certificate is for, or from, as a text for people.
#pragma once

#include <string>

#include "framework/internet/tls/Der.h"

namespace internet {

struct DistinguishedName {
  std::string text;        // "CN=ftp.example.org, O=Example": the order and the backslashes of RFC 4514
  std::string commonName;  // the last one, without backslashes
};

// `content`: that of a Name (RFC 5280, 4.1.2.4). UTF-8 comes out; what is no character, or a control
// character, is '?'. Throws NotDer.
DistinguishedName readDistinguishedName(DerBytes content);

}  // namespace internet
