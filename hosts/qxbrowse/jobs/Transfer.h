// SPDX-License-Identifier: MIT
// One file on its way, and how far it is.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "hosts/shared/Transfers.h"

namespace browse {

enum class Direction { upload, download, copy };

// As far as whoever told it knows.
struct FileFacts {
  std::optional<std::uint64_t> size;
  std::optional<hosts::Moment> time;
};

struct Transfer {
  Direction direction = Direction::download;
  hosts::RemoteFile remote;     // where it comes from; of an upload where it goes to
  std::filesystem::path local;  // the other end; of a copy empty
  std::string copy;             // of a copy: where it goes to
  std::shared_ptr<const qx::Login> server;
  std::optional<std::uint64_t> size;
  std::optional<hosts::Moment> time = {};
  // The file that stood where this one goes to, when somebody looked.
  std::optional<FileFacts> replaces = {};
  bool mayReplace = false;   // the user has said so
  std::uint64_t number = 0;  // the list's, which gives none twice
};

enum class TransferState { waiting, running, done, failed, cancelled };

struct TransferProgressShown {
  std::optional<std::uint64_t> moved;  // none: the library does not tell
  double rate = 0;                     // bytes a second
  std::optional<std::chrono::seconds> left;
};

}  // namespace browse
