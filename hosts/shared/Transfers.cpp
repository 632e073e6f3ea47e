// SPDX-License-Identifier: MIT
#include "hosts/shared/Transfers.h"

#include <fstream>
#include <random>

#include "QXErrorInfo.h"
#include "hosts/shared/Entries.h"
#include "hosts/shared/LocalFiles.h"
#include "hosts/shared/Names.h"

namespace hosts {
namespace {

namespace fs = std::filesystem;

using State = Outcome::State;

constexpr std::uint32_t kDiskFull = 112;
constexpr std::uint32_t kFileTooLarge = 223;
constexpr std::uint64_t kBytesOfSize = std::uint64_t{1} << 32;  // FTPFileSize counts modulo this

Outcome failure(const std::string& text) { return {.state = State::failed, .text = text}; }

Outcome cancelled(const std::string& left) {
  return {.state = State::cancelled, .text = "cancelled; " + left};
}

Outcome hasNoPath(const fs::path& path) {
  return failure("the code page of this system lacks characters of " + shown(path));
}

// Also what the end of the client has made of a question behind the transfer.
Outcome failure(const qx::Client& client, const std::string& why, const std::string& left) {
  return client ? failure(why + "; " + left) : cancelled(left);
}

// Nothing would go better with the next file.
bool isOutOfReach(std::uint32_t number) {
  return number == QX_ERROR_TIMEOUT || number == QX_ERROR_CANNOT_CONNECT ||
         number == QX_ERROR_INCORRECT_PASSWORD || number == QX_ERROR_LOGIN_FAILURE;
}

Outcome outcomeOf(const qx::Client& client, const qx::Report& report, const std::string& left) {
  if (report.isCancelled || !client) return cancelled(left);
  const bool isDiskFull = report.number == kDiskFull || report.number == kFileTooLarge;
  return {.state = State::failed,
          .text = (isDiskFull ? "the disk is full" : report.text) + "; " + left,
          .number = report.number,
          .isDiskFull = isDiskFull,
          .isServerLost = isOutOfReach(report.number)};
}

// A name that nobody else has, and that listings and mirrors leave out.
fs::path partBeside(const fs::path& target) {
  std::random_device random;
  for (;;) {
    fs::path part = target.parent_path() / (".qx-" + std::to_string(random()) + ".part");
    std::error_code error;
    if (!fs::exists(fs::symlink_status(part, error))) return part;
  }
}

// What came is believed when it is as long as the listing says, or as the server says now: listings round,
// and files grow.
std::optional<std::string> whyNotWhole(qx::Client& client, const RemoteFile& source, std::uint64_t came) {
  if (!source.size || *source.size == came) return {};
  const std::string why = std::to_string(came) + " bytes have come of " + std::to_string(*source.size);
  if (*source.size % kBytesOfSize == came % kBytesOfSize) return why;  // what is asked next could not tell
  const auto now = client.size(source.path);
  return now && *now == came % kBytesOfSize ? std::nullopt : std::optional(why);
}

// Also behind a link, which a file would take the place of.
bool isDeviceOrPipe(const fs::path& target) {
  std::error_code error;
  return fs::is_other(fs::status(target, error));
}

bool canBeReplaced(const fs::path& target) {
  std::error_code error;
  return !isDeviceOrPipe(target) && !fs::is_directory(fs::symlink_status(target, error));
}

Outcome isNoFile(const fs::path& target) { return failure(shown(target) + " is no file; it is as it was"); }

Outcome finish(Part& part) {
  const auto why = part.become();
  return why ? failure(*why + "; " + part.drop()) : Outcome{};
}

Outcome finish(qx::Client& client, const RemoteFile& source, Part& part) {
  std::error_code error;
  const LocalFacts facts = factsOf(part.path(), Links::told, error);
  if (error) return failure(error.message() + "; " + part.drop());
  if (const auto why = whyNotWhole(client, source, facts.size)) return failure(client, *why, part.drop());
  if (source.time) setChanged(part.path(), source.time->at, error);  // one that cannot be set does no harm
  return finish(part);
}

std::string leftOnServer(qx::Client& client, const std::string& path, bool mayAsk) {
  const auto size = mayAsk ? client.size(path) : qx::Result<std::uint32_t>(std::nullopt, {});
  if (size) return "the server has " + std::to_string(*size) + " bytes as " + path;
  return "a part of it may be on the server as " + path;
}

}  // namespace

std::optional<std::uint64_t> listedSize(qx::Client& client, const std::string& path) {
  const std::string name = lastPart(path);
  const auto listing = client.list(folderOf(path), "*");
  if (!listing) return {};
  for (const QXDirEntry& entry : *listing) {
    if (name == entry.szName && entry.bIsDirectory == 0) return sizeOf(entry);
  }
  return {};
}

Part::Part(const fs::path& target, IfThere ifThere)
    : m_target(fs::absolute(target)),
      m_path(partBeside(m_target)),
      m_ifThere(ifThere),
      m_rights(rightsOf(m_target)) {
  if (!m_rights) return;
  std::ofstream made(m_path);
  giveRights(*m_rights | fs::perms::owner_read | fs::perms::owner_write);
}

void Part::giveRights(fs::perms rights) const {
  std::error_code error;
  fs::permissions(m_path, rights, error);  // what cannot be given does no harm
}

std::optional<std::string> Part::become() {
  std::error_code error;
  if (m_ifThere == IfThere::keep && fs::is_regular_file(m_target, error)) return kHasCome;
  if (m_rights) giveRights(*m_rights);
  fs::rename(m_path, m_target, error);
  return error ? std::optional(error.message()) : std::nullopt;
}

std::string Part::drop() {
  std::error_code error;
  fs::remove(m_path, error);
  if (error && fs::exists(m_path, error)) return "what has come is in " + shown(m_path);
  return fs::exists(m_target, error) ? shown(m_target) + " is as it was" : "nothing is left here";
}

Outcome download(qx::Client& client, const RemoteFile& source, Part& part) {
  if (!canBeReplaced(part.target())) return isNoFile(part.target());
  const auto local = pathForLibrary(part.path());
  if (!local) return hasNoPath(part.target().parent_path());
  const auto copied = client.download(source.path, *local);
  return copied ? finish(client, source, part) : outcomeOf(client, copied.report(), part.drop());
}

Outcome download(qx::Client& client, const RemoteFile& source, const fs::path& target) {
  Part part(target);
  return download(client, source, part);
}

Outcome fetch(qx::Client& client, const qx::WebFile& source, const fs::path& target) {
  if (isDeviceOrPipe(target)) {
    const auto fetched = client.fetch(source, target.string());
    return fetched ? Outcome{} : outcomeOf(client, fetched.report(), "a part of it may have come");
  }
  if (!canBeReplaced(target)) return isNoFile(target);
  Part part(target);
  const auto local = pathForLibrary(part.path());
  if (!local) return hasNoPath(target.parent_path());
  const auto fetched = client.fetch(source, *local);
  return fetched ? finish(part) : outcomeOf(client, fetched.report(), part.drop());
}

Outcome upload(qx::Client& client, const fs::path& source, const std::string& target, const ListedSize& ask) {
  std::error_code error;
  const LocalFacts facts = factsOf(source, Links::followed, error);
  if (error) return failure(error.message() + "; nothing was sent");
  if (facts.kind != Kind::file) return failure("this is no file; nothing was sent");
  const auto local = pathForLibrary(source);
  if (!local) return hasNoPath(source);
  const bool isSizeExact = facts.size < kBytesOfSize;  // what size() tells
  const auto copied = client.upload(*local, target);
  if (!copied) {
    const qx::Report& report = copied.report();
    const bool mayAsk = isSizeExact && !report.isCancelled && report.number != QX_ERROR_TIMEOUT;
    return outcomeOf(client, report, leftOnServer(client, target, mayAsk));
  }
  if (isSizeExact) return {};
  if ((ask ? ask(target) : listedSize(client, target)) == facts.size) return {};
  return failure(client, "the server's folder does not show all bytes", leftOnServer(client, target, false));
}

}  // namespace hosts
