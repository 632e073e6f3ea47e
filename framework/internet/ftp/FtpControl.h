// SPDX-License-Identifier: MIT
// One logged-in FTP control connection, as the public classes and the finder use it. Failures are thrown as
// internet::Failure: 12002, 12030, 12031 (the connection is dead afterwards), 12003 with the server's text.
// Every wait leaves by platform::OperationStopped when the calling thread is asked to stop; the connection is
// dead then, because its replies are no longer in step. Used by one thread at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "framework/internet/ftp/ControlChannel.h"
#include "framework/internet/ftp/FtpReply.h"
#include "framework/internet/ftp/FtpTraits.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/FtpErrand.h"
#include "framework/internet/net/SessionLink.h"
#include "framework/internet/tls/TlsSock.h"
#include "framework/text/Secret.h"

namespace internet {

struct FtpLogin {
  std::string server;
  std::uint16_t port = 21;
  std::string user;
  secret::Text password;
  bool passive = false;
  TlsPolicy tls = {};
  bool tellsUploads = false;  // a FileUpload tells its watch how far it is
};

class FtpControl : public SessionMember, public std::enable_shared_from_this<FtpControl> {
 public:
  // Connects and logs in, with notifications 10 to 41. Also fails with 12007, 12029, 12014, 12015.
  static std::shared_ptr<FtpControl> open(std::shared_ptr<SessionLink> session, FtpLogin login,
                                          const FtpErrand& errand = {});
  ~FtpControl() override;  // closes the socket silently

  // --- Frame of a public operation ---

  // Runs one public operation: refuses it with 12019 when the connection was closed by us, 12030 when it is
  // dead, 12110 while a file is open or another operation runs (a callback may re-enter); runs `work`; then
  // notifies 100 when the server has answered. A notification may destroy the caller's object: behind
  // request() touch no member. Failures of `work` come out unchanged. A connection that died in it is not
  // reported closed before it is given up, by close() or waitIdle(): who hears of the failure may still want
  // to know that there was a connection.
  void request(const std::function<void()>& work);

  // request() for work that does nothing but ask. Where the connection reopens, one that turns out to be
  // closed before the server has answered is not the end of it: a new log-in takes its place, once, without a
  // notification, and `work` begins anew. A log-in that fails is the failure of the query.
  void query(const std::function<void()>& work);
  // Lets query() log in again, or not any more.
  void reopenOnDemand(bool reopens) noexcept { reopens_ = reopens; }

  // --- Exchanges; only inside request() and query() ---

  // Sends "verb argument" and waits for its reply, whatever that is. 87 for an argument that checkArgument
  // refuses. 421 closes the connection and fails with 12030.
  FtpReply command(std::string_view verb, std::string_view argument = {});
  // The same, but a refusal is raised.
  FtpReply require(std::string_view verb, std::string_view argument = {});
  // Tells that this command will be the next one, behind those that were told before, and does no harm if it
  // is not: it travels along with the first of them. False when nothing may be told behind it any more,
  // also for an argument that command() will turn down.
  bool foresee(std::string_view verb, std::string_view argument = {});
  // The same of useBinary().
  bool foreseeBinary() { return binary_ || foresee("TYPE I"); }
  // The same while a command of listing() still waits for its last reply.
  void follow(std::string_view verb, std::string_view argument);
  // Something told is still to come.
  [[nodiscard]] bool foresees() const noexcept { return channel_.foresees(); }
  // The rest will not come.
  void forgetForeseen() noexcept { channel_.forgetForeseen(); }
  // Runs a command that answers over a data connection (LIST, NLST, MLSD), in binary type, and hands its text
  // over as it comes. The final reply; or the refusal, before or after some text, which is the caller's to
  // judge. A text above kMaxListingBytes fails with 12152. `ended` is called when all of it has come and
  // before that reply is waited for.
  FtpReply listing(std::string_view verb, std::string_view argument,
                   const std::function<void(std::string_view)>& take,
                   const std::function<void()>& ended = nullptr);
  // Switches to binary type unless it is set already. listing() and transfers do it themselves.
  void useBinary();
  // Asks for the size of a file along with the next command, at no round trip of its own. It is there once
  // that command has been answered, unless the server has none to tell. Never asked of a server that is known
  // not to know SIZE. In binary type alone the answer is the number of bytes. 87 as with command().
  std::shared_ptr<const std::optional<std::uint64_t>> askSizeAlong(std::string_view path);
  // The same for the time of its last change, as the server puts it.
  std::shared_ptr<const std::optional<std::string>> askTimeAlong(std::string_view path);

  struct Question {
    std::string_view verb;
    std::string argument;
    std::function<void(const FtpReply&)> take;  // its final reply, whatever that is
  };
  // Asks all of them, together where the server takes that: at one round trip then. 87 as with command().
  void askTogether(std::span<const Question> questions);

  // Raises a refusal: 425 -> 12029; 421, 426 -> 12030; else 12003 with the text, kept as lastServerText().
  [[noreturn]] void raise(const FtpReply& reply);
  // 87 for an empty or over-long argument or one with a byte below 0x20 or 0x7f.
  static void checkArgument(std::string_view argument);

  // --- What is known of the server ---

  // Asks FEAT the first time for this host, port and user. Where UTF8 is offered it is switched on with the
  // next command that is sent.
  FtpTraits traits();
  // Whether the server speaks UTF-8: FEAT offers it, or else, asked once, the server takes OPTS UTF8 ON all
  // the same (vsftpd does).
  bool speaksUtf8();
  // The server turned down a command that it had offered: remembered for all connections.
  void withdraw(bool FtpTraits::*feature);

  // --- The logical current directory ---

  // The directory that relative names refer to. Asked of the server once; 12003 when it does not tell a sane
  // path.
  std::string currentDirectory();
  // The same, asked of the server each time.
  std::string askDirectory();
  // The connection is made for one search alone: nobody asks where it is, or goes back there.
  [[nodiscard]] bool visitsOnce() const noexcept { return visitsOnce_; }
  // Changes it for good (SetCurrentDirectory).
  void changeDirectory(std::string_view path);
  // What CWD takes on a fresh connection to come to the same directory; "" when it starts there, none when
  // unknown.
  [[nodiscard]] std::optional<std::string> directoryForReturn() const;

  // A visit to another directory that leaves the logical one untouched, unless the connection visitsOnce().
  // enter() asks for the current directory first (once per connection). The way back is sent by the
  // destructor without waiting; its reply is taken before the next command goes out, and a refusal there ends
  // the connection.
  class DirectoryVisit {
   public:
    explicit DirectoryVisit(FtpControl& control) noexcept : control_(control) {}
    ~DirectoryVisit();
    DirectoryVisit(const DirectoryVisit&) = delete;
    DirectoryVisit& operator=(const DirectoryVisit&) = delete;
    // The server's answer to CWD; anything but completed() means that nothing has changed.
    FtpReply enter(std::string_view path);
    // Makes CWD among other questions a part of the visit. False when the server does not tell from where.
    bool leave();

   private:
    FtpControl& control_;
    std::string wayBack_;  // the command; "" = not away
  };

  // --- State ---

  [[nodiscard]] bool isOpen() const noexcept { return channel_.isOpen(); }
  [[nodiscard]] bool isClosed() const noexcept { return closed_; }  // by close()
  // Code and text of the last refusal, "" if there was none.
  [[nodiscard]] const std::string& lastServerText() const noexcept { return lastServerText_; }

  // True when the connection was closed by the server, now or before; reports 50 and 51 once.
  bool waitIdle(std::chrono::milliseconds duration);
  // QUIT without waiting, then 50, 51 (unless sent already) and 70. May be called again.
  void close() noexcept override;

  // --- For transfers ---

  [[nodiscard]] ControlChannel& channel() noexcept { return channel_; }
  [[nodiscard]] const FtpLogin& login() const noexcept { return login_; }
  // What encrypts the data connections; null where nothing does.
  [[nodiscard]] TlsLogin* tls() const noexcept { return tls_.get(); }
  // Whether the server may refuse a data connection because it does not resume the session of this one: over
  // TLS 1.3 not every server gives out sessions that it knows again.
  [[nodiscard]] bool mayWantOlderTls() const noexcept;
  // The server has refused one that has resumed none: where mayWantOlderTls(), what request() or query() runs
  // is run once more, over TLS 1.2.
  void freshTlsRefused(const FtpReply& reply);
  [[nodiscard]] Timeouts timeouts() const noexcept { return session_->timeouts(); }
  // Sends "verb argument" (87 as with command()) and leaves its reply to channel().
  void sendCommand(std::string_view verb, std::string_view argument);
  // Changes what is known of the server, here and for later connections.
  void learn(const std::function<void(FtpTraits&)>& change);
  [[nodiscard]] const FtpTraits& knownTraits() const noexcept { return traits_; }
  // While an open file holds the connection, request() refuses.
  void holdForFile(bool held) noexcept { heldByFile_ = held; }
  // request() for the end of an open file, which is not refused with 12110.
  void requestOfFile(const std::function<void()>& work);

 private:
  FtpControl(std::shared_ptr<SessionLink> session, FtpLogin login);
  void connect(const FtpErrand& errand);
  void dial();
  void logIn(const FtpErrand& errand);
  void identify(const FtpErrand& errand);
  void foreseeRest(const secret::Text& password, const FtpErrand& errand);
  [[noreturn]] void refuseLogin(const FtpReply& reply);
  bool turnedDownForPacket(const Failure& failure);
  void secureChannel();
  void startTls();
  void protectData();
  void logInAgain();
  void returnTo(const std::string& directory);
  void admit() const;
  bool findsClosed(const std::function<void()>& work);
  void runOverTls(const std::function<void()>& work);
  void runFramed(const std::function<void()>& work);
  void leaveFrame(bool inStep) noexcept;
  FtpReply exchange(std::string_view line);
  FtpReply finalReply();
  void enableUtf8();
  [[nodiscard]] Failure forHost(const Failure& failure) const;

  std::shared_ptr<SessionLink> session_;
  FtpLogin login_;
  std::string traitsKey_;
  ControlChannel channel_;
  std::unique_ptr<TlsLogin> tls_;
  bool newestTls_ = false;   // the control connection's is newer than 1.2
  bool wantsTls12_ = false;  // for the data connections of what runs now
  FtpTraits traits_;
  std::optional<FtpReply> loginRefusal_;
  bool packetAtLogin_ = false;  // other lines were sent with the password
  bool visitsOnce_ = false;
  std::string lastServerText_;
  std::optional<std::string> directory_;  // the logical one, where known
  bool moved_ = false;                    // not in the directory of the login any more
  bool binary_ = false;
  bool utf8Asked_ = false;
  bool closed_ = false;  // by close()
  bool reopens_ = false;
  bool busy_ = false;
  bool heldByFile_ = false;
};

}  // namespace internet
