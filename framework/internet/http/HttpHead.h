// SPDX-License-Identifier: MIT
// The head of a web server's response: status line and header lines. No I/O.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace internet {

struct HttpHead {
  int status = 0;
  // The lines as they came, each ended by CR LF, the empty last line too.
  std::string raw;
  // What they say about the body. Chunked goes before a length; neither: the body ends with the connection.
  bool chunked = false;
  std::optional<std::uint64_t> length;
};

// Cuts the head off the beginning of a byte stream. Lines may end in a bare LF. Heads of interim responses
// (100 and the like) are skipped.
class HttpHeadReader {
 public:
  enum class State { reading, complete, invalid };

  // Takes bytes up to the head's end and returns how many. Invalid: no HTTP/1 response, longer than the
  // limits, or of contradictory length; the stream is of no use then.
  std::size_t feed(std::string_view bytes);
  [[nodiscard]] State state() const noexcept { return state_; }
  // Meaningful once complete.
  [[nodiscard]] const HttpHead& head() const noexcept { return head_; }

 private:
  [[nodiscard]] State acceptLine(std::string_view line);
  [[nodiscard]] State endOfHead();

  State state_ = State::reading;
  HttpHead head_;
  std::string line_;       // the one that has not ended yet
  std::size_t taken_ = 0;  // bytes of all heads
};

}  // namespace internet
