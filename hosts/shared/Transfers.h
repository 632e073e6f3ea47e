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

// Into a file of its own beside `target`, whose name begins with ".qx-", and which gets the name when all
// of it is there; so a file of that name stays as it was until then, and whatever else happens. One that is
// to be kept is a failure then, of kHasCome. The new file has the time that the server tells. The folder has
// to be there. The client's lambda `poll` is told how far it is, and cancels.
Outcome download(qx::Client& client, const RemoteFile& source, const std::filesystem::path& target,
                 IfThere ifThere = IfThere::replace);

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
