// SPDX-License-Identifier: MIT
// The command lines on their way to a server, and whose reply is whose. No I/O.
// Lines that can wait for one another travel together. Not every server takes that: some read one packet,
// answer its first line and drop the rest, or refuse the whole packet with one reply. So when lines behind an
// answered one stay unanswered for too long (doubt()), a probe is sent behind them, a command without effect:
// a server that has merely been slow answers them first, in their order, and one that answers the probe has
// never seen them. Only then are they sent again, and from then on one by one: nothing is ever done twice.
// Lines behind USER and PASS are no exception, but before the server has answered those two nothing is asked:
// the answer could be taken for theirs.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/internet/ftp/Foresight.h"
#include "framework/internet/ftp/FtpReply.h"
#include "framework/text/Secret.h"

namespace internet {

class LineWindow {
 public:
  using ReplyHandler = Foresight::ReplyHandler;

  // --- Lines ---

  // Keeps a line back for the next command().
  void queue(std::string_view line, ReplyHandler handler);
  // Tells a line that is going to be queued, or a command, behind those told before: they go out together.
  // Nothing where the server takes single lines. False when it will not.
  bool foresee(std::string_view line) { return !singly_ && foresight_.add(line); }
  [[nodiscard]] bool foresees() const noexcept { return !foresight_.empty(); }
  void forgetForeseen() noexcept { foresight_.forget(); }
  // The line has gone out behind an earlier command, and its turn is now.
  [[nodiscard]] bool foresees(std::string_view line) const noexcept { return foresight_.holds(line); }
  // The server is not where the caller believes it.
  [[nodiscard]] bool astray() const noexcept { return foresight_.astray(); }
  // A line that goes out for itself, before whatever is queued.
  void ahead(std::string_view line, ReplyHandler handler);
  // Only lines that went ahead are unanswered, the server takes several at a time, and `line` and what is
  // queued do no harm where one of those fails.
  [[nodiscard]] bool canFollow(std::string_view line) const noexcept;
  // What was queued, a command, whose reply take() hands back, and what was foreseen behind it. Of a command
  // that was foreseen itself takeForeseen() has the reply, once that has come.
  void command(std::string_view line);
  // A line that is foreseen goes out at once, where the server takes several, while the command before it,
  // whose preliminary reply has come, still waits for its last one. False when it will wait for its turn.
  bool follow(std::string_view line);
  // The lines that are to be sent now, with their line ends: all of them, or the next one.
  secret::Text takeSendable();
  // Nobody waits for the command's reply any more, or will take it for what it is.
  void forgetCommand() noexcept;
  // No line is to be sent, and none has its reply still to come, the probe included.
  [[nodiscard]] bool idle() const noexcept { return waiting_.empty() && sent_.empty() && !probing_; }

  // --- Replies ---

  // The oldest reply: handed back when it is the command's, or one that nobody has asked for. Else it has
  // been given to its handler, kept until it is clear whose it is, or dropped.
  std::optional<FtpReply> take(FtpReply reply);
  std::optional<FtpReply> takeForeseen();
  // `reply` belongs to an earlier line than the one whose turn it is, and so would all that follow.
  [[nodiscard]] bool late(const FtpReply& reply) const noexcept;
  // The first refusal that a handler did not accept, once; "" if there was none.
  std::string takeRefusal() noexcept;

  // --- Doubt ---

  enum class Doubt { none, soon, now };
  // Whether the rest of the lines was lost; `now` where the reply to the first of them makes it likely.
  [[nodiscard]] Doubt doubt() const noexcept;
  // The line to send when that has lasted. There is no doubt until it is answered.
  std::string_view probe();

  // What is known of how the server takes several lines in one packet.
  enum class Packets { unknown, refused, taken, takenAtLogin };
  [[nodiscard]] Packets packets() const noexcept { return singly_ ? Packets::refused : packets_; }
  // The server takes one line at a time: known from the start, or found out.
  void sendSingly() noexcept { singly_ = true; }

  // The connection is gone. Keeps what is known of the server.
  void clear() noexcept;

 private:
  struct Line {
    secret::Text text;     // one of them carries the password
    ReplyHandler handler;  // null: the command
    Foresight::LinePtr foreseen{};
    bool ahead = false;
  };
  struct Refusal {
    Line line;
    FtpReply reply;
  };

  [[nodiscard]] bool takesSeveral() const noexcept;
  void await(const Foresight::LinePtr& foreseen);
  void sendForeseen();
  // A line has followed a command that runs.
  [[nodiscard]] bool followed() const noexcept { return begun_ && sent_.size() > 1; }
  std::optional<FtpReply> takeOfFollowed(FtpReply reply);
  std::optional<FtpReply> takePreliminary(FtpReply reply);
  std::optional<FtpReply> takeBehindAll(FtpReply reply);
  std::optional<FtpReply> answerFront(FtpReply reply);
  [[nodiscard]] bool oddIsOfFront(const FtpReply& reply) const noexcept;
  std::optional<FtpReply> answerTwo(FtpReply reply);
  std::optional<FtpReply> endProbe(const FtpReply& reply);
  void sendAgain();
  std::optional<FtpReply> confirmRefusal();
  void noteTaken() noexcept;
  void deliver(const Line& line, const FtpReply& reply);

  Foresight foresight_;
  Foresight::LinePtr awaited_;  // the command, where its reply has come before
  std::vector<Line> queued_;    // until the next command
  std::vector<Line> waiting_;   // to be sent
  std::vector<Line> sent_;      // without a final reply
  bool singly_ = false;
  Packets packets_ = Packets::unknown;
  bool together_ = false;       // what is sent went out in one piece with other lines
  bool answered_ = false;       // a line of that piece was
  bool loggingIn_ = false;      // one of that piece is of the login
  bool begun_ = false;          // the first is a command that has had a preliminary reply
  bool probing_ = false;        // the probe has not been answered
  std::string_view probe_;      // the last one
  bool strayPossible_ = false;  // the next reply may be one that nobody has asked for
  // To the first line, as to one that is unknown: it may have meant the whole piece.
  std::optional<Refusal> refusal_;
  // Perhaps not the answer of the line whose turn it is, which the next reply tells, or that none comes.
  std::optional<FtpReply> odd_;
  std::string refusalText_;
};

}  // namespace internet
