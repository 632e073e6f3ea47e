// SPDX-License-Identifier: MIT
#include "framework/internet/FtpFileFind.h"

#include <chrono>
#include <optional>
#include <string_view>
#include <utility>

#include "framework/internet/FtpConnection.h"
#include "framework/internet/Raising.h"
#include "framework/internet/ftp/FindRule.h"
#include "framework/internet/ftp/HostNames.h"
#include "framework/internet/listing/FtpListing.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"
#include "framework/platform/stop_token.h"

namespace internet {

struct FindState {
  Found found;  // its entries are those that FindNextFile has still to come to
  std::optional<FtpEntry> current;

  void next() {
    if (!current) current.emplace();
    static_cast<void>(found.entries.takeFirst(*current));
  }
};

namespace {

// What FindFile answers with false; everything else is trouble of the connection.
bool isAnswer(std::uint32_t error) noexcept {
  return error == kExtendedError || error == kIncorrectHandleState || error == kTransferInProgress ||
         error == platform::kErrorInvalidParameter || error == platform::kErrorNotEnoughMemory;
}

std::int64_t secondsNow() {
  using namespace std::chrono;
  return duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
}

void checkPattern(std::string_view pattern) {
  // Of a pattern the server gets the directory alone.
  const std::size_t slash = pattern.rfind('/');
  const bool below = slash != std::string_view::npos && slash > 0;
  FtpControl::checkArgument(below ? pattern.substr(0, slash) : pattern);
  if (below && slash + 1 < pattern.size()) FtpControl::checkArgument(pattern.substr(slash + 1));
}

void askTime(FtpControl& control, FindState& state) {
  const FtpReply reply = control.command("MDTM", state.found.timePath);
  state.found.timePath.clear();
  constexpr std::size_t kCode = 4;  // "213 "
  if (reply.code != 213 || reply.text.size() < kCode) return;
  std::string_view time = std::string_view(reply.text).substr(kCode);
  while (time.ends_with(' ')) time.remove_suffix(1);
  state.current->modified = parseMdtmTime(time);
}

EntryList namesForHost(FtpControl& control, EntryList entries) {
  if (entries.isAscii()) return entries;
  EntryList converted;
  for (FtpEntry entry; entries.takeFirst(entry); converted.add(entry)) {
    platform::throwIfStopped();
    entry.name = nameForHost(control, std::move(entry.name));
  }
  return converted;
}

}  // namespace
}  // namespace internet

using internet::FindState;
using internet::FtpEntry;

namespace {

const FtpEntry* currentOf(const std::shared_ptr<FindState>& state) noexcept {
  return state && state->current ? &*state->current : nullptr;
}

}  // namespace

CFtpFileFind::CFtpFileFind(CFtpConnection* connection, std::uintptr_t)
    : m_control(connection ? connection->Control() : nullptr) {}

CFtpFileFind::~CFtpFileFind() = default;

bool CFtpFileFind::FindFile(const char* pattern, std::uint32_t) {
  Close();
  const std::shared_ptr<internet::FtpControl> control = m_control;
  const std::string asked = pattern && *pattern ? pattern : "*";
  const auto state = std::make_shared<FindState>();
  m_state = state;
  const bool content = std::exchange(m_expectsContent, false);
  bool unusable = false;
  const auto search = [&] {
    unusable = false;
    internet::FindRule rule(*control, internet::secondsNow());
    internet::Found found;
    try {
      found = rule.find(internet::nameForServer(*control, asked), content);
    } catch (const internet::Failure&) {
      unusable = rule.listingUnusable();
      throw;
    }
    found.entries = internet::namesForHost(*control, std::move(found.entries));
    state->found = std::move(found);
  };
  const std::optional<internet::Failure> failure = internet::attempt([&] {
    internet::checkPattern(asked);
    if (!control) internet::fail(internet::kIncorrectHandleState);
    control->query(search);
  });
  if (failure && (unusable || !internet::isAnswer(failure->error))) internet::throwAsException(*failure);
  const bool found = !failure && !state->found.entries.empty();
  if (!found) platform::setLastError(failure ? failure->error : platform::kErrorNoMoreFiles);
  return found;
}

bool CFtpFileFind::FindNextFile() {
  if (EntriesLeft() > 0) m_state->next();
  if (EntriesLeft() > 0) return true;
  platform::setLastError(platform::kErrorNoMoreFiles);
  return false;
}

bool CFtpFileFind::IsContent() const noexcept { return m_state && m_state->found.isContent; }

std::size_t CFtpFileFind::EntriesLeft() const noexcept { return m_state ? m_state->found.entries.size() : 0; }

std::string CFtpFileFind::GetFileName() const {
  const FtpEntry* entry = currentOf(m_state);
  return entry ? entry->name : std::string();
}

bool CFtpFileFind::IsDirectory() const {
  const FtpEntry* entry = currentOf(m_state);
  return entry && entry->isDirectory;
}

std::uint64_t CFtpFileFind::GetLength() const {
  const FtpEntry* entry = currentOf(m_state);
  return entry ? entry->size : 0;
}

bool CFtpFileFind::MatchesMask(std::uint32_t mask) const {
  const FtpEntry* entry = currentOf(m_state);
  return entry && (entry->attributes & mask) != 0;
}

std::int64_t CFtpFileFind::GetLastWriteTime() {
  if (!currentOf(m_state)) return 0;
  if (m_state->found.timePath.empty()) return m_state->current->modified;
  const auto control = m_control;
  const auto state = m_state;
  // A time that cannot be had is unknown; the last error tells why.
  static_cast<void>(internet::answer([&] { control->query([&] { internet::askTime(*control, *state); }); }));
  return state->current->modified;
}

void CFtpFileFind::Close() noexcept { m_state.reset(); }
