// SPDX-License-Identifier: MIT
// Whole files between the server and the local disk. One may need several connections: where one of them has
// broken (12002, 12030, 12031) the next run goes on behind what has been moved, if the file is still the
// same; else it begins anew. A run that went on and has moved nothing is not followed by one that goes on.
// run() belongs inside FtpControl::request() and fails by internet::Failure, with the system's own number for
// what goes wrong locally.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/ftp/FtpTransfer.h"
#include "framework/internet/ftp/RemotePart.h"
#include "framework/internet/net/UploadWatch.h"
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
      : local_(std::move(local)), failIfExists_(failIfExists), attributes_(attributes), part_(goesOn) {}

  // The local file is created before the remote one is asked for; one that was created is deleted when the
  // run fails for another reason than its connection, or with this object.
  void run(FtpControl& control, std::string_view remote);
  [[nodiscard]] bool holdsPart() const noexcept { return target_.has_value(); }
  void drop() noexcept;

 private:
  void transfer(FtpControl& control, std::string_view remote);
  void createTarget() { target_.emplace(local_, failIfExists_, attributes_); }

  std::string local_;
  bool failIfExists_;
  std::uint32_t attributes_;
  std::optional<LocalTarget> target_;
  RemotePart part_;  // that is in it
};

class FileUpload {
 public:
  // `watch` may be empty; it is told of runs whose login asks for that.
  FileUpload(std::string local, bool goesOn, UploadWatch watch)
      : local_(std::move(local)), goesOn_(goesOn), watch_(std::move(watch)) {}

  // Succeeds only on the server's word that it has the file.
  void run(FtpControl& control, std::string_view remote);

 private:
  [[nodiscard]] std::uint64_t positionAt(FtpControl& control, std::string_view remote) const;
  bool goOn(FtpControl& control, std::string_view remote);
  bool transfer(FtpControl& control, std::string_view remote, std::uint64_t position);
  bool begin(FtpTransfer& transfer, std::string_view remote);
  void send(FtpTransfer& transfer);
  [[nodiscard]] FtpTransfer::Told toldBy(const FtpTransfer& transfer) const;

  std::string local_;
  bool goesOn_;
  const UploadWatch watch_;
  platform::File file_;
  std::optional<std::uint64_t> before_;  // what the server had before the first run
  std::uint64_t sent_ = 0;               // behind the file's start
  bool moved_ = false;                   // by the last run
};

}  // namespace internet
