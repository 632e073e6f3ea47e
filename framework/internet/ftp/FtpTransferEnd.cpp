// SPDX-License-Identifier: MIT
// How a transfer ends: in good order, on the server's word or on the size, or broken off.
#include <algorithm>
#include <array>
#include <utility>

#include "framework/internet/ftp/FtpTransfer.h"
#include "framework/internet/ftp/SizeProbe.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/stop_token.h"

namespace internet {

using platform::IoStatus;
using std::chrono::milliseconds;

namespace {

// A server that says nothing for this long about a transfer that was broken off is asked whether it has
// ended.
constexpr milliseconds kQuiet{250};
// It may have answered before it saw the break: for so long it can still say how the transfer ended.
constexpr milliseconds kLate{1'000};

}  // namespace

FtpReply FtpTransfer::finish(const std::function<void()>& ended) {
  endData();
  if (ended) ended();
  FtpReply reply = finalReply();
  closeData();
  return reply;
}

// An upload's connection stays until the reply has come: it tells whether the server still takes data.
void FtpTransfer::endData() {
  if (data_ && kind_ == Kind::upload) {
    endUpload();
  } else {
    closeData();
  }
  state_ = State::ended;
}

FtpReply FtpTransfer::finalReply() {
  std::optional<DeliveryWatch> delivery;
  if (data_) delivery.emplace(data_->socket());
  if (final_) notifyFinal();
  while (!final_) {
    FtpReply reply =
        control_->channel().reply(control_->timeouts().finalReply, delivery ? &*delivery : nullptr);
    takeReply(std::move(reply));
    finalNotified_ = true;
  }
  if (tooShort() && !refused()) fail(kConnectionAborted);
  return *final_;
}

// A server that has spoken before it saw the end has not taken the whole, whatever it calls that; one that is
// gone will not say that it has. Neither must take the end of the data for that of the file.
void FtpTransfer::endUpload() {
  if (!awaitFinal(kAtOnce) && control_->isOpen()) return endStream();
  breakData();
  if (!final_) control_->channel().reply(kAtOnce);  // fails with the reason
  notifyFinal();
  if (final_->refused()) control_->raise(*final_);
  fail(kConnectionAborted);
}

void FtpTransfer::endStream() {
  std::optional<DataLimit> limit;
  for (;;) {
    const IoStatus status = data_->shutdownSend();
    if (status == IoStatus::done) return;
    if (status != IoStatus::wouldBlock) dataFailed(status);
    waitForData(true, limit);
  }
}

void FtpTransfer::confirm() {
  endData();
  try {
    const FtpReply reply = finalReply();
    if (reply.refused()) control_->raise(reply);
    checkCut();
  } catch (const Failure&) {
    if (!wordIsLost() || !allIsThere()) throw;
  }
  closeData();
}

// A server whose connection was cut may take that for the end of an upload, and call the part complete. The
// last bytes were on their way then, and what they have met was a reset.
void FtpTransfer::checkCut() {
  if (kind_ != Kind::upload || control_->tls() || awaitPeer(kQuiet) != IoStatus::reset) return;
  const auto size = parseSizeReply(control_->command("SIZE", path_));
  if (size && *size != start_ + moved_) fail(kConnectionReset);
}

// A server may also take the end of an upload for a break and say 426. Who has closed the connection himself
// has no question left.
bool FtpTransfer::wordIsLost() const noexcept {
  if (control_->isClosed()) return false;
  return !final_ || (kind_ == Kind::upload && final_->code == 426);
}

// The caller has got exactly what the file is known to have.
bool FtpTransfer::hasKnownSize() const noexcept {
  const auto known = announced_ ? announced_ : expected_;
  return known && start_ + moved_ - (bufferEnd_ - bufferStart_) == *known;
}

bool FtpTransfer::allIsThere() {
  if (hasKnownSize()) return true;
  awaitPeersEnd();
  return remoteFileHasSize(*control_, path_, start_ + moved_);
}

// The server closes an upload's connection once it has read all: asked before that it may tell less.
void FtpTransfer::awaitPeersEnd() { awaitPeer(control_->timeouts().dataError); }

// Until a byte or an end has come. Nobody who asks has a use for the byte.
IoStatus FtpTransfer::awaitPeer(milliseconds limit) {
  if (!data_) return IoStatus::closed;
  std::array<char, 1> nothing{};
  return receiveSome(*data_, nothing, Deadline(limit)).status;
}

bool FtpTransfer::abandon() {
  awaitFirstData();
  breakData();
  state_ = State::failed;
  if (!awaitAnyEnd()) control_->channel().drop();
  return control_->isOpen();
}

// A reset that comes before the server has taken the connection can go unseen: pyftpdlib then waits for
// another connection and sends the file with the next one. That it sends proves that it has taken this one.
void FtpTransfer::awaitFirstData() {
  if (kind_ != Kind::upload && moved_ == 0) awaitPeer(kQuiet);
}

// The final reply, or what stands for it: pure-ftpd ends a broken transfer with a second 150 or in silence.
bool FtpTransfer::awaitAnyEnd() {
  if (!final_) {
    const Deadline deadline(control_->timeouts().earlyClose);
    auto reply = control_->channel().tryReply(std::min(kQuiet, deadline.left()));
    if (reply && !reply->preliminary()) {
      final_ = std::move(reply);
    } else if (!askForEnd(deadline, !reply)) {
      return false;
    }
  }
  notifyFinal();
  return true;
}

// The answer to NOOP tells that the transfer is over, because no transfer ends with its codes. But a server
// that had been silent may have answered before it saw the break.
bool FtpTransfer::askForEnd(const Deadline& deadline, bool silent) {
  ControlChannel& channel = control_->channel();
  if (!channel.isOpen()) return false;
  channel.send("NOOP");
  while (!final_) {
    auto reply = channel.tryReply(deadline.left());
    if (!reply) return false;
    if (reply->code == 200 || reply->unsupported()) {
      final_ = std::move(reply);
    } else {
      silent = false;
    }
  }
  if (!silent) return true;
  auto late = channel.tryReply(std::min(kLate, deadline.left()));
  if (late && !late->preliminary()) final_ = std::move(late);
  return channel.isOpen();
}

void FtpTransfer::close() {
  control_->holdForFile(false);
  // A stopped worker has not written all that it wanted: what is up there must not pass for the whole file.
  platform::throwIfStopped();
  const bool failed = state_ == State::failed;
  if (failed || !movedInFull()) {
    const bool inStep = abandon();
    // The server may call a download that was given up whatever it likes.
    if (failed && final_ && final_->refused()) control_->raise(*final_);
    if (failed || !(inStep || hasKnownSize())) fail(kConnectionAborted);
    return;
  }
  confirm();
}

bool FtpTransfer::movedInFull() const noexcept {
  if (kind_ == Kind::upload) return true;
  // A read of exactly the file's size never comes to see the end of the data.
  const bool received = state_ == State::ended || (announced_ && start_ + moved_ >= *announced_);
  return received && bufferStart_ == bufferEnd_;
}

}  // namespace internet
