// SPDX-License-Identifier: MIT
// What a connection is made for, where that is known when it logs in: a server that is known to take several
// lines in one packet gets the first questions of it along with the password. A hint alone: whatever is done
// with the connection afterwards has the same answers.
#pragma once

#include <string>

namespace internet {

struct FtpErrand {
  enum class Kind {
    none,
    find,      // CFtpFileFind::FindFile of the path; with the next one, of no other path
    content,   // the same, and the path is most likely a directory's
    download,  // of the path, from its start
    upload,    // to the path, from its start
    append,    // to the path, behind its content
    rename,    // of the path
    directory  // CFtpConnection::GetCurrentDirectory
  };
  Kind kind = Kind::none;
  std::string path{};
  bool goesOn = false;  // a download or upload that may take several attempts
};

}  // namespace internet
