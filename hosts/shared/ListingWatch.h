// SPDX-License-Identifier: MIT
// What the protocol tells of a listing and FTPGetDirectory does not: whether the server has sent one, for a
// folder that is missing or that it refuses lists as empty; and how exact its times are. And of any other
// operation: which command the server has refused.
#pragma once

#include <string>
#include <string_view>

#include "QXDirEntry.h"
#include "hosts/shared/Moments.h"

namespace hosts {

// Fed by the client's lambda `line`, read between the operations.
class ListingWatch {
 public:
  void take(std::string_view line);

  // Before a listing or another operation.
  void begin() { *this = {}; }

  // Whether the server has sent a listing and said that it was whole.
  bool hasCome() const { return m_stage == Stage::whole; }
  // The server's last refusal; empty: none.
  const std::string& refusal() const { return m_refusal; }
  // Whether that was its answer to this command, for good.
  bool hasRefused(std::string_view verb) const { return m_refusal.starts_with('5') && m_refused == verb; }

  // Of an entry of that listing. REQUIRES: its time is not zero.
  Precision precisionOf(const QXDirEntry& entry) const;

 private:
  enum class Stage { none, asked, coming, whole };

  void command(std::string_view line);
  void reply(std::string_view line);

  Stage m_stage = Stage::none;
  bool m_isExact = false;  // told by facts, to the second
  std::string m_verb;      // of the last command
  std::string m_refusal;
  std::string m_refused;  // its verb
};

}  // namespace hosts
