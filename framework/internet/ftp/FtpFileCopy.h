// SPDX-License-Identifier: MIT
// Whole files between the server and the local disk. One may need several connections: where one of them has
// broken (12002, 12030, 12031) the next run goes on behind what has been moved, if the file is still the
// same; else it begins anew. A run that has moved nothing is not followed by one that goes on. run() belongs
// inside FtpControl::request() and fails by internet::Failure, with the system's own number for what goes
// wrong locally.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/platform/file.h"

namespace internet {

// A local file being written, deleted again unless keep() was reached.
class LocalTarget {
 public:
  LocalTarget(const std::string& path, bool failIfExists, std::uint32_t attributes);
  ~LocalTarget();
  LocalTarget(const LocalTarget&) = delete;
  LocalTarget& operator=(const LocalTarget&) = delete;

  [[nodiscard]] bool write(const void* data, std::size_t size) noexcept { return file_.write(data, size); }
  void keep();

 private:
  std::string path_;
  platform::File file_;
  bool created_;  // by us, and to be deleted
};

class FileDownload {
 public:
  // `goesOn`: several runs may come. They cost one line more each.
  FileDownload(std::string local, bool failIfExists, std::uint32_t attributes, bool goesOn)
      : local_(std::move(local)), failIfExists_(failIfExists), attributes_(attributes), goesOn_(goesOn) {}

  // The local file is created before the remote one is asked for; one that was created is deleted when the
  // run fails for another reason than its connection, or with this object.
  void run(FtpControl& control, std::string_view remote);
  [[nodiscard]] bool holdsPart() const noexcept { return target_.has_value(); }
  void drop() noexcept { target_.reset(); }

 private:
  // What tells two states of a remote file apart.
  struct Version {
    std::optional<std::uint64_t> size;
    std::optional<std::string> time;
    [[nodiscard]] bool known() const noexcept { return size && time; }
    bool operator==(const Version&) const = default;
  };

  [[nodiscard]] bool isSame(FtpControl& control, std::string_view remote) const;
  void transfer(FtpControl& control, std::string_view remote, std::uint64_t position);
  void beginAnew();

  std::string local_;
  bool failIfExists_;
  std::uint32_t attributes_;
  bool goesOn_;
  std::optional<LocalTarget> target_;
  Version version_;         // of the remote file that the part is of
  std::uint64_t done_ = 0;  // of it, in the local file
  bool moved_ = false;      // the last run has added to it
};

class FileUpload {
 public:
  FileUpload(std::string local, bool goesOn) : local_(std::move(local)), goesOn_(goesOn) {}

  // Succeeds only on the server's word that it has the file.
  void run(FtpControl& control, std::string_view remote);

 private:
  [[nodiscard]] std::uint64_t positionAt(FtpControl& control, std::string_view remote) const;
  bool transfer(FtpControl& control, std::string_view remote, std::uint64_t position);

  std::string local_;
  bool goesOn_;
  platform::File file_;
  std::optional<std::uint64_t> before_;  // what the server had before the first run
  std::uint64_t sent_ = 0;               // behind the file's start
  bool moved_ = false;                   // by the last run
};

}  // namespace internet
