// SPDX-License-Identifier: MIT
// A real server whose files are also looked at through curl, a client that is not ours.
#pragma once

#include <optional>
#include <string>

#include "tests/support/Fixture.h"

namespace fixture {

class CurledServer : public RealServer {
 public:
  using RealServer::RealServer;

  // A file's content, or the names of a folder ("/pub/"), one a line. None when curl does not get it. The
  // path goes out in UTF-8, as it is.
  [[nodiscard]] std::optional<std::string> byCurl(const std::string& path) const;
};

}  // namespace fixture
