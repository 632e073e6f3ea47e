// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/lists/ItemList.h"

#include <algorithm>
#include <compare>
#include <numeric>

#include "hosts/qxbrowse/ui/System.h"

namespace browse {
namespace {

bool isDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

std::wstring lower(std::wstring text) {
  CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
  return text;
}

bool isEqual(std::wstring_view left, std::wstring_view right, BOOL ignoreCase) {
  return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                              static_cast<int>(right.size()), ignoreCase) == CSTR_EQUAL;
}

int sign(std::strong_ordering order) { return std::is_lt(order) ? -1 : std::is_gt(order) ? 1 : 0; }

}  // namespace

// A number stands as "0", the count of its digits, and its digits without leading zeros: a longer one is
// larger, and all of them come where digits do among other characters.
std::wstring naturalKey(const std::wstring& name) {
  const std::wstring folded = lower(name);
  std::wstring key;
  key.reserve(folded.size() + 4);
  for (std::size_t at = 0; at < folded.size();) {
    if (!isDigit(folded[at])) {
      key += folded[at++];
      continue;
    }
    while (at + 1 < folded.size() && folded[at] == L'0' && isDigit(folded[at + 1])) ++at;
    const std::size_t begin = at;
    while (at < folded.size() && isDigit(folded[at])) ++at;
    key += L'0';
    key += static_cast<wchar_t>(at - begin);
    key.append(folded, begin, at - begin);
  }
  return key;
}

std::wstring extensionOf(const Item& item) {
  const auto dot = item.name.rfind(L'.');
  if (item.isFolder || dot == std::wstring::npos || dot == 0) return {};
  return lower(item.name.substr(dot + 1));
}

ItemList::ItemList(std::vector<Item> items, Sorting sorting)
    : m_items(std::move(items)),
      m_keys(m_items.size()),
      m_extensions(m_items.size()),
      m_order(m_items.size()) {
  std::ranges::transform(m_items, m_keys.begin(), [](const Item& item) { return naturalKey(item.name); });
  std::ranges::transform(m_items, m_extensions.begin(), &extensionOf);
  std::iota(m_order.begin(), m_order.end(), std::size_t{0});
  sort(sorting);
}

void ItemList::sort(Sorting sorting) {
  m_sorting = sorting;
  std::ranges::sort(m_order, [this](std::size_t left, std::size_t right) { return isBefore(left, right); });
}

bool ItemList::isBefore(std::size_t left, std::size_t right) const {
  if (m_items[left].isFolder != m_items[right].isFolder) return m_items[left].isFolder;
  const int order = compareByColumn(left, right);
  if (order != 0) return m_sorting.isDescending ? order > 0 : order < 0;
  const int byKey = m_keys[left].compare(m_keys[right]);
  if (byKey != 0) return byKey < 0;
  return m_items[left].name < m_items[right].name;
}

int ItemList::compareByColumn(std::size_t left, std::size_t right) const {
  switch (m_sorting.column) {
    case Column::size:
      return sign(m_items[left].size <=> m_items[right].size);
    case Column::type:
      return m_extensions[left].compare(m_extensions[right]);
    case Column::time:
      return sign(m_items[left].time <=> m_items[right].time);
    case Column::name:
      break;
  }
  return m_keys[left].compare(m_keys[right]);
}

std::optional<std::size_t> ItemList::findPrefix(std::wstring_view prefix, std::size_t start) const {
  for (std::size_t step = 0; step < size(); ++step) {
    const std::size_t row = (start + step) % size();
    const std::wstring_view name = (*this)[row].name;
    if (name.size() >= prefix.size() && isEqual(name.substr(0, prefix.size()), prefix, TRUE)) return row;
  }
  return {};
}

std::optional<std::size_t> ItemList::findName(std::wstring_view name) const {
  for (std::size_t row = 0; row < size(); ++row) {
    if ((*this)[row].name == name) return row;
  }
  return {};
}

std::vector<std::size_t> ItemList::rowsOf(const std::vector<std::size_t>& identities) const {
  std::vector<bool> isWanted(m_items.size());
  for (const std::size_t identity : identities) isWanted[identity] = true;
  std::vector<std::size_t> rows;
  for (std::size_t row = 0; row < size(); ++row) {
    if (isWanted[m_order[row]]) rows.push_back(row);
  }
  return rows;
}

}  // namespace browse
