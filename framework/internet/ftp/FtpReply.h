// SPDX-License-Identifier: MIT
// Replies of an FTP server: the incremental reader and the facts that replies carry. No I/O.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace internet {

struct FtpReply {
  int code = 0;
  std::string text;  // every line with its code, joined by CR LF, without the last line end

  [[nodiscard]] bool preliminary() const noexcept { return code >= 100 && code < 200; }
  [[nodiscard]] bool completed() const noexcept { return code >= 200 && code < 300; }
  // Not done, 3xx included: only USER and RNFR are followed by what such a reply asks for.
  [[nodiscard]] bool refused() const noexcept { return code >= 300; }
  // The server does not know the command or this form of it (500, 501, 502, 504, 522).
  [[nodiscard]] bool unsupported() const noexcept;
};

// Cuts the byte stream of a control connection into replies (RFC 959, 4.2): a reply whose first line goes
// "ddd-" ends with the line that starts with the same digits and a blank. Lines may end in a bare LF and may
// hold NUL bytes.
class FtpReplyReader {
 public:
  // Takes more bytes. False once a line or a reply is longer than the limits or something else than a reply
  // came; the stream is of no use then.
  [[nodiscard]] bool feed(std::string_view bytes);
  // The oldest complete reply that was not taken yet.
  [[nodiscard]] std::optional<FtpReply> take();
  [[nodiscard]] bool replyReady() const noexcept { return ready_; }
  // Nothing stands behind the replies that were taken.
  [[nodiscard]] bool empty() const noexcept { return bytes_.empty() && !collecting_ && !ready_ && !broken_; }
  // What stands behind the replies that were taken is none.
  [[nodiscard]] bool broken() const noexcept { return broken_; }

 private:
  bool acceptLine(std::string_view line);
  bool parse();

  std::string bytes_;         // not cut into lines yet
  std::size_t searched_ = 0;  // of bytes_: holds no line end
  FtpReply reply_;            // being collected, or ready
  bool collecting_ = false;   // inside a multi-line reply
  bool ready_ = false;
  bool broken_ = false;
};

// 227: the port of "(h1,h2,h3,h4,p1,p2)", with or without brackets. The address is not looked at.
std::optional<std::uint16_t> parsePassivePort(std::string_view text);
// 229: the port of "(<d><d><d>port<d>)".
std::optional<std::uint16_t> parseExtendedPassivePort(std::string_view text);
// 257: the quoted path with doubled quotes made single. None when it is empty or holds control bytes.
std::optional<std::string> parseQuotedPath(std::string_view text);
// 150: the size of "(123 bytes)". None when the reply does not tell it.
std::optional<std::uint64_t> parseAnnouncedSize(std::string_view text);
// 213 to SIZE: the number behind the code.
std::optional<std::uint64_t> parseSizeReply(const FtpReply& reply);
// 213 to MDTM: what stands behind the code.
std::optional<std::string> parseTimeReply(const FtpReply& reply);

}  // namespace internet
