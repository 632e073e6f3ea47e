// SPDX-License-Identifier: MIT
// What a TLS stream shows without its keys (RFC 5246, 6.2 and 7). The system tells less.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace platform {

using TlsBytes = std::span<const unsigned char>;

enum class RecordKind : unsigned char { changeCipher = 20, alert, handshake, data };

inline constexpr std::size_t kLargestRecord = 5 + 16'384 + 2'048;

// The size of the record that the bytes begin with; 0: it is not whole yet; none: it is no record.
std::optional<std::size_t> recordSize(TlsBytes bytes) noexcept;

// "handshake failure (alert 40)" where the bytes begin with a record that says so in plain text; else "".
std::string alertText(TlsBytes bytes);

// Looks for the server's wish for a certificate, which Wine keeps to itself.
class HandshakeWatch {
 public:
  // The next records of the handshake, whole ones.
  void look(TlsBytes records) noexcept;
  [[nodiscard]] bool certificateAsked() const noexcept { return asked_; }

 private:
  void lookAtMessages(TlsBytes content) noexcept;

  std::array<unsigned char, 4>
      header_{};  // of the message that begins: its kind, and a length of three bytes
  std::size_t headerSize_ = 0;
  std::size_t left_ = 0;  // of that message's content
  bool plain_ = true;
  bool asked_ = false;
};

}  // namespace platform
