// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FtpFileCopy.h"

#include <utility>

#include "framework/internet/ftp/FtpTransfer.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"

namespace internet {

using platform::FileCreation;

// --- The local file ---

LocalTarget::LocalTarget(const std::string& path, bool failIfExists, std::uint32_t attributes)
    : path_(path),
      created_(file_.open(path.c_str(), platform::FileAccess::write, FileCreation::createNew, attributes)) {
  if (created_) return;
  const bool there = platform::lastError() == platform::kErrorFileExists;
  if (there && !failIfExists &&
      file_.open(path.c_str(), platform::FileAccess::write, FileCreation::createAlways, attributes)) {
    return;
  }
  fail(platform::lastError());
}

LocalTarget::~LocalTarget() {
  if (!created_) return;
  const platform::LastErrorKeeper reason;
  file_.close();
  // Windows deletes no read-only file. There is nobody to tell if it fails.
  static_cast<void>(platform::setFileAttributes(path_.c_str(), platform::kFileAttributeNormal));
  static_cast<void>(platform::deleteFile(path_.c_str()));
}

void LocalTarget::keep() {
  if (!file_.close()) fail(platform::lastError());
  created_ = false;
}

// --- Download ---

void FileDownload::run(FtpControl& control, std::string_view remote) {
  const bool goesOn = holdsPart() && std::exchange(moved_, false) && isSame(control, remote);
  if (!goesOn) beginAnew();
  try {
    transfer(control, remote, done_);
    target_->keep();
    target_.reset();
  } catch (const Failure& failure) {
    if (!goesOn_ || !version_.known() || !isBrokenConnection(failure.error)) drop();
    throw;
  } catch (...) {
    drop();
    throw;
  }
}

void FileDownload::beginAnew() {
  drop();  // first: it is in the new one's way
  target_.emplace(local_, failIfExists_, attributes_);
  done_ = 0;
}

bool FileDownload::isSame(FtpControl& control, std::string_view remote) const {
  control.useBinary();
  const Version now{parseSizeReply(control.command("SIZE", remote)),
                    parseTimeReply(control.command("MDTM", remote))};
  return now == version_;
}

void FileDownload::transfer(FtpControl& control, std::string_view remote, std::uint64_t position) {
  FtpTransfer transfer(control.shared_from_this(), FtpTransfer::Kind::download);
  transfer.startAt(position);
  const auto time = goesOn_ && position == 0 ? control.askTimeAlong(remote) : nullptr;
  transfer.open(remote);
  if (transfer.start() != position) beginAnew();
  if (time) version_ = {transfer.size(), *time};
  const auto block = std::make_unique_for_overwrite<char[]>(kTransferBuffer);
  while (const std::size_t count = transfer.receive(block.get(), kTransferBuffer)) {
    if (!target_->write(block.get(), count)) {
      const std::uint32_t error = platform::lastError();
      transfer.abandon();
      fail(error);
    }
    done_ += count;
    moved_ = true;
  }
  transfer.confirm();
}

// --- Upload ---

void FileUpload::run(FtpControl& control, std::string_view remote) {
  const bool first = !file_.isOpen();
  if (first && !file_.open(local_.c_str(), platform::FileAccess::read, FileCreation::openExisting)) {
    fail(platform::lastError());
  }
  const std::uint64_t position = std::exchange(moved_, false) ? positionAt(control, remote) : 0;
  if (transfer(control, remote, position)) return;
  // Some servers let a download restart, but no upload. They may still have the position in mind.
  control.command("REST", "0");
  transfer(control, remote, 0);
}

// Where the server's file ends, if it is the part that an earlier run has sent, and not what was there
// before.
std::uint64_t FileUpload::positionAt(FtpControl& control, std::string_view remote) const {
  control.useBinary();
  const auto there = parseSizeReply(control.command("SIZE", remote));
  return there && there != before_ && *there <= sent_ ? *there : 0;
}

// False when the server turns it down because of its position.
bool FileUpload::transfer(FtpControl& control, std::string_view remote, std::uint64_t position) {
  FtpTransfer transfer(control.shared_from_this(), FtpTransfer::Kind::upload);
  transfer.startAt(position);
  if (sent_ == 0 && goesOn_) {
    control.useBinary();
    const auto before = control.askSizeAlong(remote);
    transfer.open(remote);
    before_ = *before;
  } else {
    const FtpReply reply = transfer.begin("STOR", remote);
    if (reply.refused() && transfer.start() > 0) return false;
    if (reply.refused()) control.raise(reply);
  }
  if (file_.seekTo(transfer.start()) < 0) {
    const std::uint32_t error = platform::lastError();
    transfer.abandon();
    fail(error);
  }
  sent_ = transfer.start();
  const auto note = [&] {
    sent_ = transfer.start() + transfer.moved();
    moved_ = transfer.moved() > 0;
  };
  try {
    transfer.sendFile(file_);
    transfer.confirm();
  } catch (...) {
    note();
    throw;
  }
  return true;
}

}  // namespace internet
