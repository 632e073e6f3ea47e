// SPDX-License-Identifier: MIT
// The body of a web server's response, taken out of its framing: a known length, chunks, or all that comes
// until the connection ends. No I/O.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "framework/internet/http/HttpHead.h"

namespace internet {

class HttpBody {
 public:
  // Until the connection ends.
  HttpBody() noexcept = default;
  explicit HttpBody(const HttpHead& head) noexcept;

  // Takes bytes of the wire and appends what belongs to the body to `content`. What comes behind the body's
  // end is dropped. False when that are no chunks; the stream is of no use then.
  [[nodiscard]] bool feed(std::string_view wire, std::string& content);
  [[nodiscard]] bool complete() const noexcept { return state_ == State::complete; }
  // The connection has ended. False when the body is cut short by that.
  [[nodiscard]] bool endOfStream() noexcept;

 private:
  enum class State { untilClose, sized, chunkSize, chunkData, chunkEnd, trailer, complete };

  void takeData(std::string_view& wire, std::string& content);
  [[nodiscard]] bool takeLine(std::string_view& wire);
  [[nodiscard]] bool acceptLine(std::string_view line) noexcept;
  [[nodiscard]] bool acceptSize(std::string_view line) noexcept;

  State state_ = State::untilClose;
  std::uint64_t left_ = 0;  // of the body or of the chunk
  std::string line_;        // of the framing, not ended yet
  std::size_t trailerBytes_ = 0;
};

}  // namespace internet
