// SPDX-License-Identifier: MIT
// The items of one list in the order that they are shown. Knows no window; one thread at a time.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "hosts/qxbrowse/lists/Items.h"

namespace browse {

enum class Column { name, size, type, time };
constexpr std::size_t kColumns = 4;

struct Sorting {
  Column column = Column::name;
  bool isDescending = false;
  bool operator==(const Sorting&) const = default;
};

// What orders names as people count: compared unit by unit, the keys of "a2", "A10", "b" come in this order.
std::wstring naturalKey(const std::wstring& name);

// L"photo.JPG" -> L"jpg"; nothing for a name without one, as L".profile", and for folders.
std::wstring extensionOf(const Item& item);

// Its making is the larger part of the work for a large folder, and may be done on any thread.
class ItemList {
 public:
  ItemList() = default;
  explicit ItemList(std::vector<Item> items, Sorting sorting = {});
  // Folders stay first in either direction, and names decide between equals.
  void sort(Sorting sorting);
  [[nodiscard]] Sorting sorting() const { return m_sorting; }

  [[nodiscard]] std::size_t size() const { return m_order.size(); }
  [[nodiscard]] const Item& operator[](std::size_t row) const { return m_items[m_order[row]]; }

  // The first row from `start` on, and around, whose name begins like this, in letters of either case.
  [[nodiscard]] std::optional<std::size_t> findPrefix(std::wstring_view prefix, std::size_t start) const;
  [[nodiscard]] std::optional<std::size_t> findName(std::wstring_view name) const;

  // The place of a row that no sorting changes, and where it stands now.
  [[nodiscard]] std::size_t identity(std::size_t row) const { return m_order[row]; }
  [[nodiscard]] std::vector<std::size_t> rowsOf(const std::vector<std::size_t>& identities) const;

 private:
  [[nodiscard]] bool isBefore(std::size_t left, std::size_t right) const;
  [[nodiscard]] int compareByColumn(std::size_t left, std::size_t right) const;

  std::vector<Item> m_items;
  std::vector<std::wstring> m_keys;  // of the names, beside m_items
  std::vector<std::wstring> m_extensions;
  std::vector<std::size_t> m_order;
  Sorting m_sorting;
};

}  // namespace browse
