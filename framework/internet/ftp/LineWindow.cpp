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
    Answers{"TYPE", {200}},      Answers{"OPTS", {200}},      Answers{"EPRT", {200, 250}},
    Answers{"PORT", {200, 250}}, Answers{"NOOP", {200}},      Answers{"EPSV", {229, 227}},
    Answers{"PASV", {227}},      Answers{"SIZE", {213}},      Answers{"MDTM", {213}},
    Answers{"MLST", {250}},      Answers{"FEAT", {211}},      Answers{"PWD", {257}},
    Answers{"MKD", {257}},       Answers{"CWD", {250, 200}},  Answers{"DELE", {250}},
    Answers{"RMD", {250}},       Answers{"RNFR", {350}},      Answers{"RNTO", {250}},
    Answers{"REST", {350}},      Answers{"LIST", {226, 250}}, Answers{"MLSD", {226, 250}},
    Answers{"NLST", {226, 250}}, Answers{"RETR", {226, 250}}, Answers{"STOR", {226, 250}},
    Answers{"PBSZ", {200}},      Answers{"PROT", {200}},      Answers{"USER", {331, 230}},
    Answers{"PASS", {230, 202}}};

std::string_view verbOf(std::string_view line) noexcept { return line.substr(0, line.find(' ')); }

// Whether the line can be answered so. Every command can be refused by any code.
bool canBeAnswered(std::string_view line, int code) noexcept {
  if (code >= 400) return true;
  const auto* const known = std::find_if(kAnswers.begin(), kAnswers.end(),
                                         [line](const Answers& each) { return each.verb == verbOf(line); });
  if (known == kAnswers.end()) return true;
  return std::find(known->codes.begin(), known->codes.end(), code) != known->codes.end();
}

// A size, a time or a port: nobody tells it but who is asked for it.
bool isAnswerToAnother(std::string_view line, int code) noexcept {
  const std::string_view verb = verbOf(line);
  if (code == 213) return verb != "SIZE" && verb != "MDTM";
  return (code == 227 || code == 229) && verb != "EPSV" && verb != "PASV";
}

// What the server says before it has answered these may be its word on them.
bool isOfLogin(std::string_view line) noexcept { return verbOf(line) == "USER" || verbOf(line) == "PASS"; }

// It changes no file, and means the same in whatever directory the server is.
bool asksTheSameAnywhere(std::string_view line) noexcept {
  constexpr std::array<std::string_view, 6> kOfNone{"TYPE", "OPTS", "EPSV", "PASV", "NOOP", "FEAT"};
  constexpr std::array<std::string_view, 4> kOfPath{"CWD", "SIZE", "MDTM", "MLST"};
  const std::string_view verb = verbOf(line);
  const auto isOf = [verb](const auto& verbs) {
    return std::find(verbs.begin(), verbs.end(), verb) != verbs.end();
  };
  return isOf(kOfNone) || (isOf(kOfPath) && line.substr(verb.size()).starts_with(" /"));
}

// As the last reply of a command that went well.
bool completes(std::string_view line, int code) noexcept { return code < 400 && canBeAnswered(line, code); }

// A server that does not know this one transfers nothing.
bool everyServerKnows(std::string_view line) noexcept { return line == "TYPE I"; }

}  // namespace

// --- Lines ---

void LineWindow::queue(std::string_view line, ReplyHandler handler) {
  const Foresight::LinePtr foreseen = foresight_.take(line);
  if (foreseen && foreseen->reply) return deliver({secret::Text(line), std::move(handler)}, *foreseen->reply);
  if (foreseen) {
    foreseen->handler = std::move(handler);
    return;
  }
  queued_.push_back({secret::Text(line), std::move(handler)});
}

void LineWindow::ahead(std::string_view line, ReplyHandler handler) {
  waiting_.push_back({.text = secret::Text(line), .handler = std::move(handler), .ahead = true});
}

bool LineWindow::takesSeveral() const noexcept {
  return packets() == Packets::taken || packets() == Packets::takenAtLogin;
}

bool LineWindow::canFollow(std::string_view line) const noexcept {
  if (!takesSeveral() || probing_ || refusal_ || odd_ || !waiting_.empty()) return false;
  const auto anywhere = [](const Line& each) { return asksTheSameAnywhere(each.text.view()); };
  return asksTheSameAnywhere(line) && std::all_of(queued_.begin(), queued_.end(), anywhere) &&
         std::all_of(sent_.begin(), sent_.end(), [](const Line& each) { return each.ahead; });
}

void LineWindow::command(std::string_view line) {
  if (const Foresight::LinePtr foreseen = foresight_.take(line)) return await(foreseen);
  for (Line& each : queued_) waiting_.push_back(std::move(each));
  queued_.clear();
  waiting_.push_back({secret::Text(line), nullptr});
  sendForeseen();
}

void LineWindow::sendForeseen() {
  for (const Foresight::LinePtr& foreseen : foresight_.takeUnsent()) {
    waiting_.push_back(
        {foreseen->text, [foreseen](const FtpReply& reply) { return foreseen->answer(reply); }, foreseen});
  }
}

bool LineWindow::follow(std::string_view line) {
  const bool runsAlone = begun_ && sent_.size() == 1 && waiting_.empty() && queued_.empty();
  if (!takesSeveral() || !runsAlone || probing_ || refusal_ || foresees() || !foresee(line)) return false;
  sendForeseen();
  return true;
}

// The line has gone out, and now it is the command.
void LineWindow::await(const Foresight::LinePtr& foreseen) {
  if (foreseen->reply) {
    awaited_ = foreseen;
    return;
  }
  const auto turn = [&foreseen](Line& line) {
    if (line.foreseen == foreseen) line.handler = nullptr;
  };
  std::for_each(sent_.begin(), sent_.end(), turn);
  std::for_each(waiting_.begin(), waiting_.end(), turn);
  if (refusal_) turn(refusal_->line);
}

secret::Text LineWindow::takeSendable() {
  secret::Text bytes;
  if (singly_ && !sent_.empty()) return bytes;
  const std::size_t count = singly_ ? std::min<std::size_t>(waiting_.size(), 1) : waiting_.size();
  if (count == 0) return bytes;
  const auto end = waiting_.begin() + static_cast<std::ptrdiff_t>(count);
  loggingIn_ = false;
  for (auto line = waiting_.begin(); line != end; ++line) {
    loggingIn_ = loggingIn_ || isOfLogin(line->text.view());
    bytes.append(line->text.view()).append("\r\n");
    sent_.push_back(std::move(*line));
  }
  waiting_.erase(waiting_.begin(), end);
  // Only a line that follows goes out while a command runs.
  together_ = count > 1 || begun_;
  answered_ = false;
  odd_.reset();
  return bytes;
}

void LineWindow::forgetCommand() noexcept {
  const auto isCommand = [](const Line& line) { return !line.handler; };
  std::erase_if(sent_, isCommand);
  std::erase_if(waiting_, isCommand);
  awaited_.reset();
  begun_ = false;
}

// --- Replies ---

std::optional<FtpReply> LineWindow::take(FtpReply reply) {
  if (reply.preliminary()) return takePreliminary(std::move(reply));
  if (sent_.empty()) return takeBehindAll(std::move(reply));
  const bool fits = canBeAnswered(sent_.front().text.view(), reply.code);
  const bool endsProbe = canBeAnswered(probe_, reply.code) && (!fits || reply.unsupported());
  if (followed()) return probing_ && endsProbe ? endProbe(reply) : takeOfFollowed(std::move(reply));
  if (probing_ && begun_ && !fits) {
    // The server has answered the probe while the command ran.
    probing_ = false;
    return std::nullopt;
  }
  if (oddIsOfFront(reply)) return answerTwo(std::move(reply));
  if (probing_ && !begun_ && endsProbe) return endProbe(reply);
  // In place of an answer to PASS the next line's would let everybody in.
  const bool sure = !strayPossible_ && !(together_ && isOfLogin(sent_.front().text.view()));
  if (fits || sure) return answerFront(std::move(reply));
  if (!odd_) odd_ = std::move(reply);
  return std::nullopt;
}

bool LineWindow::late(const FtpReply& reply) const noexcept {
  const bool turnIsKnown = !sent_.empty() && !strayPossible_ && !probing_ && !odd_ && !followed();
  return turnIsKnown && isAnswerToAnother(sent_.front().text.view(), reply.code);
}

// The line behind the front one is answered: what could not answer that one did. Not at a login, where it
// would let everybody in.
bool LineWindow::oddIsOfFront(const FtpReply& reply) const noexcept {
  if (!odd_ || sent_.size() < 2 || isOfLogin(sent_[0].text.view())) return false;
  return !canBeAnswered(sent_[0].text.view(), reply.code) && canBeAnswered(sent_[1].text.view(), reply.code);
}

std::optional<FtpReply> LineWindow::answerTwo(FtpReply reply) {
  std::optional<FtpReply> own = answerFront(*std::exchange(odd_, std::nullopt));
  // A handler may have closed the connection.
  std::optional<FtpReply> next = sent_.empty() ? std::nullopt : answerFront(std::move(reply));
  return own ? own : next;
}

// Some servers answer what comes while a command runs before that has ended, if only by a refusal. What is
// not the command's for certain is kept until the other reply shows whose it is.
std::optional<FtpReply> LineWindow::takeOfFollowed(FtpReply reply) {
  const std::string_view command = sent_[0].text.view();
  const std::string_view follower = sent_[1].text.view();
  if (!odd_) {
    if (completes(command, reply.code)) return answerFront(std::move(reply));
    odd_ = std::move(reply);
    return std::nullopt;
  }
  const bool oddIsFollowers = !canBeAnswered(command, odd_->code) && canBeAnswered(follower, odd_->code);
  if (oddIsFollowers || completes(command, reply.code)) std::swap(*odd_, reply);
  return answerTwo(std::move(reply));
}

std::optional<FtpReply> LineWindow::takeForeseen() {
  if (!awaited_) return std::nullopt;
  std::optional<FtpReply> reply = std::move(awaited_->reply);
  if (reply) awaited_.reset();
  return reply;
}

std::optional<FtpReply> LineWindow::takePreliminary(FtpReply reply) {
  if (sent_.empty()) return reply;
  // The lines ahead of a command have but the reply that ends them.
  if (sent_.front().handler) return std::nullopt;
  confirmRefusal();
  begun_ = true;
  strayPossible_ = false;
  if (!followed()) odd_.reset();
  return reply;
}

// All lines were answered, but perhaps the probe was not.
std::optional<FtpReply> LineWindow::takeBehindAll(FtpReply reply) {
  if (std::exchange(probing_, false)) return std::nullopt;
  return reply;
}

std::optional<FtpReply> LineWindow::answerFront(FtpReply reply) {
  std::optional<FtpReply> own = confirmRefusal();
  // Its handler may have closed the connection.
  if (sent_.empty()) return own;
  const Line line = std::move(sent_.front());
  sent_.erase(sent_.begin());
  odd_.reset();
  // Behind a login that was answered line by line nothing is left over.
  const bool ran = std::exchange(begun_, false);
  strayPossible_ = together_ && !ran && !(loggingIn_ && sent_.empty());
  const bool first = !std::exchange(answered_, true) && !ran;
  noteTaken();
  if (first && !sent_.empty() && reply.unsupported() && !isOfLogin(line.text.view())) {
    refusal_ = Refusal{line, std::move(reply)};
    return own;
  }
  if (!line.handler) return reply;
  deliver(line, reply);
  return own;
}

// Each line of a packet has had its own answer.
void LineWindow::noteTaken() noexcept {
  if (!together_ || !sent_.empty() || probing_) return;
  if (packets_ != Packets::takenAtLogin) packets_ = loggingIn_ ? Packets::takenAtLogin : Packets::taken;
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

// A later line was answered: the reply to the first one was meant for that line alone. Handed back when that
// is the command.
std::optional<FtpReply> LineWindow::confirmRefusal() {
  if (!refusal_) return std::nullopt;
  Refusal refusal = std::move(*refusal_);
  refusal_.reset();
  if (!refusal.line.handler) return std::move(refusal.reply);
  deliver(refusal.line, refusal.reply);
  return std::nullopt;
}

void LineWindow::deliver(const Line& line, const FtpReply& reply) {
  if (!line.handler(reply) && refusalText_.empty()) refusalText_ = reply.text;
}

std::string LineWindow::takeRefusal() noexcept { return std::exchange(refusalText_, {}); }

// --- Doubt ---

LineWindow::Doubt LineWindow::doubt() const noexcept {
  const bool restIsLate = together_ && answered_ && !begun_;
  const auto ofLogin = [](const Line& line) { return isOfLogin(line.text.view()); };
  if (sent_.empty() || probing_ || !(restIsLate || odd_)) return Doubt::none;
  if (std::any_of(sent_.begin(), sent_.end(), ofLogin)) return Doubt::none;
  return refusal_ && everyServerKnows(refusal_->line.text.view()) ? Doubt::now : Doubt::soon;
}

// None of the unanswered lines can have the probe's answer.
std::string_view LineWindow::probe() {
  constexpr int kDone = 200;
  probing_ = true;
  const bool ambiguous = std::any_of(sent_.begin(), sent_.end(),
                                     [](const Line& line) { return canBeAnswered(line.text.view(), kDone); });
  probe_ = ambiguous ? "PWD" : "NOOP";
  return probe_;
}

void LineWindow::clear() noexcept {
  foresight_.clear();
  awaited_.reset();
  queued_.clear();
  waiting_.clear();
  sent_.clear();
  together_ = answered_ = begun_ = probing_ = strayPossible_ = false;
  refusal_.reset();
  odd_.reset();
  refusalText_.clear();
}

}  // namespace internet
