// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/SizeProbe.h"

#include <memory>

#include "framework/internet/net/Failure.h"

namespace internet {

namespace {

class SilentSession : public SessionLink {
 public:
  explicit SilentSession(const Timeouts& timeouts) noexcept : timeouts_(timeouts) {}
  void notify(std::uint32_t, void*, std::uint32_t) override {}
  [[nodiscard]] Timeouts timeouts() const noexcept override { return timeouts_; }

 private:
  Timeouts timeouts_;
};

}  // namespace

bool remoteFileHasSize(const FtpControl& control, std::string_view path, std::uint64_t size) {
  const auto directory = control.directoryForReturn();
  const bool absolute = path.starts_with('/');
  if (!absolute && !directory) return false;
  try {
    const auto probe = FtpControl::open(std::make_shared<SilentSession>(control.timeouts()), control.login());
    bool same = false;
    probe->request([&] {
      if (!absolute && !directory->empty()) probe->require("CWD", *directory);
      probe->useBinary();
      same = parseSizeReply(probe->command("SIZE", path)) == size;
    });
    probe->close();
    return same;
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace internet
