// SPDX-License-Identifier: MIT
// What has come of a remote file over connections that broke, and the rule by which the next one goes on
// behind it. The file has to have the size and the time of its first attempt, and an attempt that went on and
// brought nothing is followed by one from the start. One that never came to ask for the file does not count.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "framework/internet/ftp/FtpTransfer.h"
#include "framework/internet/net/InternetErrors.h"

namespace internet {

class RemotePart {
 public:
  // `goesOn`: several attempts may come. The first one costs one line more then.
  explicit RemotePart(bool goesOn) noexcept : goesOn_(goesOn) {}

  // Opens the next attempt's download, behind the part or at the file's start: done() tells. Belongs inside
  // FtpControl::request() and fails by internet::Failure.
  void open(FtpTransfer& transfer, std::string_view remote);
  // The caller has so many bytes more.
  void add(std::size_t count) noexcept {
    done_ += count;
    moved_ = true;
  }
  [[nodiscard]] std::uint64_t done() const noexcept { return done_; }
  // Whether the part is worth keeping after an attempt that failed like this.
  [[nodiscard]] bool outlives(std::uint32_t error) const noexcept {
    return goesOn_ && version_.known() && isBrokenConnection(error);
  }
  void forget() noexcept {
    done_ = 0;
    moved_ = false;
  }

 private:
  // What tells two states of a remote file apart.
  struct Version {
    std::optional<std::uint64_t> size;
    std::optional<std::string> time;
    [[nodiscard]] bool known() const noexcept { return size && time; }
    bool operator==(const Version&) const = default;
  };

  [[nodiscard]] bool isSame(FtpControl& control, std::string_view remote) const;

  bool goesOn_;
  Version version_;         // of the remote file that the part is of
  std::uint64_t done_ = 0;  // of it, in the caller's hands
  bool moved_ = false;      // the last attempt has added to it
};

}  // namespace internet
