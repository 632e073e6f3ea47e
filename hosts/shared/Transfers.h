// SPDX-License-Identifier: MIT
// One file down or up. What has ended without success says in words why, and what is left where. The end of
// the client is a cancel (EndableClient.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "QXClient.h"
#include "hosts/shared/Moments.h"

namespace hosts {

struct RemoteFile {
  std::string path;
  // As a listing has told them.
  std::optional<std::uint64_t> size;
  std::optional<Moment> time;
};

struct Outcome {
  enum class State { done, failed, cancelled };

  State state = State::done;
  std::string text;          // why not, and what is left where
  std::uint32_t number = 0;  // of the library's report
  bool isDiskFull = false;   // here: the next file would fail as well
  bool isServerLost = false;

  explicit operator bool() const { return state == State::done; }
};

// What becomes of a file that stands there by the time the new one is whole.
enum class IfThere { replace, keep };
inline constexpr const char* kHasCome = "a file of this name has come meanwhile";

// What has come of a download: a file of its own beside the target, whose name begins with ".qx-". It goes
// with this, unless it has become the target, and has the rights of a file that it takes the place of.
class Part {
 public:
  explicit Part(const std::filesystem::path& target, IfThere ifThere = IfThere::replace);
  ~Part() { drop(); }
  Part(const Part&) = delete;
  Part& operator=(const Part&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
  [[nodiscard]] const std::filesystem::path& target() const { return m_target; }
  // Gets the target's name; says why not.
  std::optional<std::string> become();
  // Removes it; says what is left.
  std::string drop();

 private:
  void giveRights(std::filesystem::perms rights) const;

  const std::filesystem::path m_target;
  const std::filesystem::path m_path;
  const IfThere m_ifThere;
  const std::optional<std::filesystem::perms> m_rights;  // of the file that it is to replace
};

// Into a part, which becomes the target when all of it is there; so a file of that name stays as it was until
// then, and whatever else happens. One that is to be kept is a failure then, of kHasCome. The new file has
// the time that the server tells. What is no file stays as it is: a folder, a device, a pipe. The folder has
// to be there. The client's lambda `poll` is told how far it is, and cancels.
Outcome download(qx::Client& client, const RemoteFile& source, Part& part);
Outcome download(qx::Client& client, const RemoteFile& source, const std::filesystem::path& target);

// The same of a file of the web. A device or a pipe as the target gets the content as it comes.
Outcome fetch(qx::Client& client, const qx::WebFile& source, const std::filesystem::path& target);

// The size of a file as its folder's listing has it, in all its bits; none: that is not to be had. Dispatches
// no messages.
std::optional<std::uint64_t> listedSize(qx::Client& client, const std::string& path);

using ListedSize = std::function<std::optional<std::uint64_t>(const std::string& path)>;

// In place of what is there. Done is what the server has with all its bytes: it is asked for the size, in the
// folder's listing where that needs more than 32 bits: by `ask`, or, without one, by the client. `poll`
// cancels, and is told how far it is where the client's login `tellsUploads`.
Outcome upload(qx::Client& client, const std::filesystem::path& source, const std::string& target,
               const ListedSize& ask = nullptr);

}  // namespace hosts
