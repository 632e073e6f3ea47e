// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/LineWindow.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

namespace internet {

namespace {

struct Answers {
  std::string_view verb;
  std::array<int, 2> codes;  // when done; RETR and its kind begin with a preliminary reply besides
};

constexpr std::array kAnswers{
    Answers{"TYPE", {200}},      Answers{"OPTS", {200}},      Answers{"EPRT", {200}},
    Answers{"PORT", {200}},      Answers{"NOOP", {200}},      Answers{"EPSV", {229}},
    Answers{"PASV", {227}},      Answers{"SIZE", {213}},      Answers{"MDTM", {213}},
    Answers{"MLST", {250}},      Answers{"FEAT", {211}},      Answers{"PWD", {257}},
    Answers{"MKD", {257}},       Answers{"CWD", {250, 200}},  Answers{"DELE", {250}},
    Answers{"RMD", {250}},       Answers{"RNFR", {350}},      Answers{"RNTO", {250}},
    Answers{"REST", {350}},      Answers{"LIST", {226, 250}}, Answers{"MLSD", {226, 250}},
    Answers{"NLST", {226, 250}}, Answers{"RETR", {226, 250}}, Answers{"STOR", {226, 250}},
    Answers{"PBSZ", {200}},      Answers{"PROT", {200}}};

std::string_view verbOf(std::string_view line) noexcept { return line.substr(0, line.find(' ')); }

// Whether the line can be answered so. Every command can be refused by any code.
bool canBeAnswered(std::string_view line, int code) noexcept {
  if (code >= 400) return true;
  const auto* const known = std::find_if(kAnswers.begin(), kAnswers.end(),
                                         [line](const Answers& each) { return each.verb == verbOf(line); });
  if (known == kAnswers.end()) return true;
  return std::find(known->codes.begin(), known->codes.end(), code) != known->codes.end();
}

// A server that does not know this one transfers nothing.
bool everyServerKnows(std::string_view line) noexcept { return line == "TYPE I"; }

}  // namespace

// --- Lines ---

void LineWindow::queue(std::string_view line, ReplyHandler handler) {
  queued_.push_back({secret::Text(line), std::move(handler)});
}

void LineWindow::ahead(std::string_view line, ReplyHandler handler) {
  waiting_.push_back({secret::Text(line), std::move(handler)});
}

void LineWindow::command(std::string_view line) {
  for (Line& each : queued_) waiting_.push_back(std::move(each));
  queued_.clear();
  waiting_.push_back({secret::Text(line), nullptr});
}

secret::Text LineWindow::takeSendable() {
  secret::Text bytes;
  if (singly_ && !sent_.empty()) return bytes;
  const std::size_t count = singly_ ? std::min<std::size_t>(waiting_.size(), 1) : waiting_.size();
  if (count == 0) return bytes;
  const auto end = waiting_.begin() + static_cast<std::ptrdiff_t>(count);
  for (auto line = waiting_.begin(); line != end; ++line) {
    bytes.append(line->text.view()).append("\r\n");
    sent_.push_back(std::move(*line));
  }
  waiting_.erase(waiting_.begin(), end);
  together_ = count > 1;
  answered_ = begun_ = false;
  odd_.reset();
  return bytes;
}

void LineWindow::forgetCommand() noexcept {
  const auto isCommand = [](const Line& line) { return !line.handler; };
  std::erase_if(sent_, isCommand);
  std::erase_if(waiting_, isCommand);
  begun_ = false;
}

// --- Replies ---

std::optional<FtpReply> LineWindow::take(FtpReply reply) {
  if (reply.preliminary()) return takePreliminary(std::move(reply));
  if (sent_.empty()) return takeBehindAll(std::move(reply));
  const bool fits = canBeAnswered(sent_.front().text.view(), reply.code);
  if (probing_ && begun_ && !fits) {
    // The server has answered the probe while the command ran.
    probing_ = false;
    return std::nullopt;
  }
  if (probing_ && !begun_ && (!fits || reply.unsupported())) return endProbe(reply);
  if (fits || !strayPossible_) return answerFront(std::move(reply));
  if (!odd_) odd_ = std::move(reply);
  return std::nullopt;
}

std::optional<FtpReply> LineWindow::takePreliminary(FtpReply reply) {
  if (sent_.empty()) return reply;
  // The lines ahead of a command have but the reply that ends them.
  if (sent_.front().handler) return std::nullopt;
  confirmRefusal();
  begun_ = true;
  strayPossible_ = false;
  odd_.reset();
  return reply;
}

// All lines were answered, but perhaps the probe was not.
std::optional<FtpReply> LineWindow::takeBehindAll(FtpReply reply) {
  if (std::exchange(probing_, false)) return std::nullopt;
  return reply;
}

std::optional<FtpReply> LineWindow::answerFront(FtpReply reply) {
  confirmRefusal();
  // Its handler may have closed the connection.
  if (sent_.empty()) return std::nullopt;
  const Line line = std::move(sent_.front());
  sent_.erase(sent_.begin());
  odd_.reset();
  strayPossible_ = together_ && !std::exchange(begun_, false);
  const bool first = !std::exchange(answered_, true);
  if (!line.handler) return reply;
  if (first && !sent_.empty() && reply.unsupported()) {
    refusal_ = Refusal{line, std::move(reply)};
  } else {
    deliver(line, reply);
  }
  return std::nullopt;
}

// The server has answered the probe, and so has never seen the lines before it. What it has said meanwhile is
// the first one's answer after all.
std::optional<FtpReply> LineWindow::endProbe(const FtpReply& reply) {
  probing_ = false;
  singly_ = true;
  std::optional<FtpReply> own;
  if (odd_) own = answerFront(*std::exchange(odd_, std::nullopt));
  sendAgain();
  // A refusal may have been that of a line before the probe, whose answer is still to come then.
  strayPossible_ = reply.unsupported();
  return own;
}

void LineWindow::sendAgain() {
  if (refusal_ && !sent_.empty()) sent_.insert(sent_.begin(), std::move(refusal_->line));
  refusal_.reset();
  waiting_.insert(waiting_.begin(), std::make_move_iterator(sent_.begin()),
                  std::make_move_iterator(sent_.end()));
  sent_.clear();
}

// A later line was answered: the reply to the first one was meant for that line alone.
void LineWindow::confirmRefusal() {
  if (!refusal_) return;
  const Refusal refusal = std::move(*refusal_);
  refusal_.reset();
  deliver(refusal.line, refusal.reply);
}

void LineWindow::deliver(const Line& line, const FtpReply& reply) {
  if (!line.handler(reply) && refusalText_.empty()) refusalText_ = reply.text;
}

std::string LineWindow::takeRefusal() noexcept { return std::exchange(refusalText_, {}); }

// --- Doubt ---

LineWindow::Doubt LineWindow::doubt() const noexcept {
  const bool restIsLate = together_ && answered_ && !begun_;
  if (sent_.empty() || probing_ || !(restIsLate || odd_)) return Doubt::none;
  return refusal_ && everyServerKnows(refusal_->line.text.view()) ? Doubt::now : Doubt::soon;
}

// None of the unanswered lines can have the probe's answer.
std::string_view LineWindow::probe() {
  constexpr int kDone = 200;
  probing_ = true;
  const bool ambiguous = std::any_of(sent_.begin(), sent_.end(),
                                     [](const Line& line) { return canBeAnswered(line.text.view(), kDone); });
  return ambiguous ? "PWD" : "NOOP";
}

void LineWindow::clear() noexcept {
  queued_.clear();
  waiting_.clear();
  sent_.clear();
  together_ = answered_ = begun_ = probing_ = strayPossible_ = false;
  refusal_.reset();
  odd_.reset();
  refusalText_.clear();
}

}  // namespace internet
