// SPDX-License-Identifier: MIT
// The text by which a host names a server and says how the way there is to be protected:
//   name[;progress=uploads]     in plain text, as it ever was
//   ftpes://name[;option]...    FTP that turns encryption on before the login (AUTH TLS)
//   ftps://name[;option]...     FTP that is encrypted from its first byte
//   https://name[;option]...    the same of HTTP
// Options, each once: "fingerprint=sha256:" with 64 hex digits, "verify=no", "tls=1.2". Of FTP also
// "progress=uploads", which a plain name may have as well. Letters match in both cases. No I/O.
#pragma once

#include <string>
#include <string_view>

#include "framework/internet/tls/TlsPolicy.h"

namespace internet {

struct SecureHost {
  std::string name;  // as ServerName has it
  TlsPolicy policy;
  bool tellsUploads = false;  // uploads are to tell how far they are
};

// Fail (internet::Failure) with 87 and a text that tells what is wrong behind a scheme of theirs. A text
// without one is a name, whatever else it holds.
SecureHost parseFtpHost(std::string_view text);
SecureHost parseHttpHost(std::string_view text);

}  // namespace internet
