// SPDX-License-Identifier: MIT
#include "hosts/shared/ListingWatch.h"

#include "hosts/shared/Entries.h"

namespace hosts {
namespace {

constexpr std::uint64_t kSecond = 10'000'000;  // in units of QXFileTime
constexpr std::uint64_t kMinute = 60 * kSecond;
constexpr std::uint64_t kHour = 60 * kMinute;
constexpr std::uint64_t kDay = 24 * kHour;

// The one server known to say so ends the listing of a folder that it may not read like any other.
bool tellsOfFailure(std::string_view reply) { return reply.find("failed to open") != std::string_view::npos; }

}  // namespace

void ListingWatch::take(std::string_view line) {
  if (line.starts_with("> ")) command(line.substr(2));
  if (line.starts_with("< ")) reply(line.substr(2));
}

void ListingWatch::command(std::string_view line) {
  m_verb = line.substr(0, line.find(' '));
  if (m_verb != "MLSD" && m_verb != "LIST" && m_verb != "NLST") return;
  m_stage = Stage::asked;
  m_isExact = m_verb == "MLSD";
}

void ListingWatch::reply(std::string_view line) {
  if (line.size() < 3) return;
  const char kind = line.front();
  if (kind == '4' || kind == '5' || (m_stage == Stage::coming && tellsOfFailure(line))) {
    m_refusal = line;
    m_refused = m_verb;
    if (m_stage != Stage::whole) m_stage = Stage::none;
  } else if (kind == '1' && m_stage == Stage::asked) {
    m_stage = Stage::coming;
  } else if (kind == '2' && m_stage == Stage::coming) {
    m_stage = Stage::whole;
  }
}

Precision ListingWatch::precisionOf(const QXDirEntry& entry) const {
  const std::uint64_t time = unitsOf(entry.ftLastWriteTime);
  if (m_isExact || time % kMinute != 0) return Precision::second;
  return time % kDay != 0 ? Precision::minute : Precision::day;
}

}  // namespace hosts
