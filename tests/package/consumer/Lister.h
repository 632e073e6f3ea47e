// SPDX-License-Identifier: MIT
// The same listing by a host in C++20.
#pragma once

#include <cstdio>
#include <string>

#include "QXClient.h"

// PORT USER PASSWORD in `words`.
inline int listFolder(const qx::Exports& exports, char** words) {
  auto client = qx::Client::make(exports).value();
  const auto port = static_cast<std::uint32_t>(std::stoul(words[0]));
  if (!client.setLogin({.host = "127.0.0.1", .user = words[1], .password = words[2], .port = port})) return 2;
  const auto entries = client.list("/pub");
  if (!entries) {
    std::puts(entries.report().text.c_str());
    return 1;
  }
  for (const QXDirEntry& entry : *entries) std::puts(entry.szName);
  return 0;
}
