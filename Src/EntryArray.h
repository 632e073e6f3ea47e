// SPDX-License-Identifier: MIT
// The pending listing of a client: the array that the listing call fills and the copy-out call hands over.
#pragma once

#include <cstddef>
#include <memory>

#include "QXDirEntry.h"

// Entries that an array for `count` entries has room for: 256, and 255 more for each time that the entries
// reach the bound with more to come.
[[nodiscard]] std::size_t EntryCapacity(std::size_t count) noexcept;

// An empty array with that room, released by array delete. Throws std::bad_alloc.
[[nodiscard]] std::unique_ptr<QXDirEntry[]> NewEntryArray(std::size_t count);

// The number of entries in an array is kept in its first entry's aReserved, so that a copy never reads more
// than is there.
void StoreEntryCount(QXDirEntry* array, std::uint32_t count) noexcept;
[[nodiscard]] std::uint32_t EntryCount(const QXDirEntry* array) noexcept;

// Copies `count` entries out. False, and only what there is, when there are fewer.
[[nodiscard]] bool CopyEntries(const QXDirEntry* array, QXDirEntry* target, std::uint32_t count) noexcept;
