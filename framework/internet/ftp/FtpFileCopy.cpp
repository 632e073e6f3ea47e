// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FtpFileCopy.h"

#include <algorithm>

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
  if (!target_) createTarget();
  try {
    transfer(control, remote);
    target_->keep();
    target_.reset();
  } catch (const Failure& failure) {
    if (!part_.outlives(failure.error)) drop();
    throw;
  } catch (...) {
    drop();
    throw;
  }
}

void FileDownload::drop() noexcept {
  part_.forget();
  target_.reset();
}

void FileDownload::transfer(FtpControl& control, std::string_view remote) {
  FtpTransfer transfer(control.shared_from_this(), FtpTransfer::Kind::download);
  const bool holdsPart = part_.done() > 0;
  part_.open(transfer, remote);
  if (holdsPart && part_.done() == 0) {
    target_.reset();  // first: it is in the new one's way
    createTarget();
  }
  const auto block = std::make_unique_for_overwrite<char[]>(kTransferBuffer);
  while (const std::size_t count = transfer.receive(block.get(), kTransferBuffer)) {
    if (!target_->write(block.get(), count)) {
      const std::uint32_t error = platform::lastError();
      transfer.abandon();
      fail(error);
    }
    part_.add(count);
  }
  transfer.confirm();
}

// --- Upload ---

void FileUpload::run(FtpControl& control, std::string_view remote) {
  const bool first = !file_.isOpen();
  if (first && !file_.open(local_.c_str(), platform::FileAccess::read, FileCreation::openExisting)) {
    fail(platform::lastError());
  }
  if (!goOn(control, remote)) transfer(control, remote, 0);
}

// Some servers let a download restart, but no upload: they refuse it, or take the rest for the whole. They
// may still have the position in mind.
bool FileUpload::goOn(FtpControl& control, std::string_view remote) {
  const std::uint64_t position = moved_ ? positionAt(control, remote) : 0;
  if (position == 0) return false;
  if (transfer(control, remote, position)) {
    // Where the server's word was lost its size has decided.
    if (!control.isOpen() || parseSizeReply(control.command("SIZE", remote)) == sent_) return true;
  }
  control.command("REST", "0");
  return false;
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
  try {
    if (!begin(transfer, remote)) return false;
  } catch (...) {
    moved_ = moved_ && !transfer.asked();
    throw;
  }
  send(transfer);
  return true;
}

bool FileUpload::begin(FtpTransfer& transfer, std::string_view remote) {
  FtpControl& control = transfer.control();
  const bool first = sent_ == 0 && goesOn_;
  if (first) control.useBinary();
  const auto before = first ? control.askSizeAlong(remote) : nullptr;
  const FtpReply reply = transfer.begin("STOR", remote);
  if (before) before_ = *before;
  if (reply.refused() && transfer.start() == 0) control.raise(reply);
  return !reply.refused();
}

void FileUpload::send(FtpTransfer& transfer) {
  moved_ = false;
  if (file_.seekTo(transfer.start()) < 0) {
    const std::uint32_t error = platform::lastError();
    transfer.abandon();
    fail(error);
  }
  const auto note = [&] {
    sent_ = transfer.start() + transfer.moved();
    moved_ = transfer.moved() > 0;
  };
  try {
    transfer.sendFile(file_, toldBy(transfer));
    note();
    transfer.confirm();
  } catch (...) {
    note();
    throw;
  }
}

// A file may grow on its way.
FtpTransfer::Told FileUpload::toldBy(const FtpTransfer& transfer) const {
  if (!watch_ || !transfer.control().login().tellsUploads) return nullptr;
  const auto size = static_cast<std::uint64_t>(std::max<std::int64_t>(file_.size(), 0));
  FtpTransfer::Told told = [this, size](std::uint64_t position) {
    watch_(position, std::max(position, size));
  };
  told(transfer.start());
  return told;
}

}  // namespace internet
