// SPDX-License-Identifier: MIT
// What the fragments of C++ in the documents stand in: each is a block of its own in place of the last line.
#include <atomic>
#include <cstdio>
#include <string>
#include <thread>

#include "QXClient.h"
#include "QXHooks.h"

[[maybe_unused]] static void fragment(qx::Client& client, const std::atomic<bool>& stop,
                                      const std::string& folder) {
  // BLOCK
}
