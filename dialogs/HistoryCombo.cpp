// SPDX-License-Identifier: MIT
#include "dialogs/HistoryCombo.h"

#include <algorithm>
#include <cstdint>

#include "dialogs/ExistingPath.h"
#include "framework/WinApp.h"

namespace {

constexpr int kMostEntries = 1000;
constexpr DWORD kDropDownStyles = 2;  // CBS_DROPDOWN and CBS_DROPDOWNLIST, not CBS_SIMPLE

std::string orEmpty(const char* text) { return text != nullptr ? text : ""; }

std::string trimmed(const std::string& text) {
  constexpr const char* kBlanks = " \t\n\v\f\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

}  // namespace

std::string CHistoryCombo::LoadHistoryList(const char* section, const char* prefix, bool keepCurrent,
                                           const char* currentEntry) {
  if (section == nullptr || prefix == nullptr || *section == '\0') return {};
  m_strSection = section;
  m_strEntryPrefix = prefix;
  m_strCurrentEntry = orEmpty(currentEntry);
  m_bKeepCurrent = keepCurrent;

  std::string last = loadNumberedEntries();
  if (!m_bKeepCurrent) return last;
  std::string current = readEntry(currentEntryName());
  if (!current.empty()) showCurrentText(current);
  return current;
}

void CHistoryCombo::SaveHistoryList(bool addCurrentText) {
  if (m_strSection.empty()) return;
  if (addCurrentText) {
    const std::string text = trimmed(GetWindowText());
    if (!text.empty()) AddHistoryItem(text.c_str());
  }
  // One more than the maximum, should a plain add have brought it.
  const auto count = static_cast<int>(std::min<std::int64_t>(GetCount(), std::int64_t{m_nMaxItems} + 1));
  for (int i = 0; i < count; ++i) writeEntry(entryName(i), GetLBText(i).c_str());
  deleteNumberedEntries(std::max(count, 0));
  if (m_bKeepCurrent) writeEntry(currentEntryName(), GetWindowText().c_str());
}

int CHistoryCombo::AddHistoryItem(const char* text) {
  const std::string given = orEmpty(text);
  if (m_strSection.empty() || m_strEntryPrefix.empty()) return AddString(given.c_str());
  const std::string item = trimmed(given);
  if (item.empty()) return -1;

  InsertString(0, item.c_str());
  // The search goes round and ends at the new item itself.
  const int older = FindStringExact(0, item.c_str());
  if (older > 0) DeleteString(older);
  dropItemsBeyondMaximum();
  SetCurSel(0);
  return 0;
}

void CHistoryCombo::StoreEditText(bool ignoreIfEmpty) {
  const std::string text = GetWindowText();
  if (!text.empty() || !ignoreIfEmpty) AddHistoryItem(text.c_str());
}

void CHistoryCombo::ClearHistoryList(bool deleteEntries) {
  ResetContent();
  if (m_strSection.empty() || !deleteEntries) return;
  deleteNumberedEntries(0);
  writeEntry(currentEntryName(), nullptr);
}

void CHistoryCombo::SetMaxItems(int count) {
  m_nMaxItems = count;
  dropItemsBeyondMaximum();
}

std::string CHistoryCombo::LoadFromRecentList(const CRecentFileList* list, bool selectMostRecent) {
  if (list == nullptr) return {};
  for (int i = 0; i < list->m_nSize; ++i) AddString(list->m_arrNames[i].c_str());
  if (selectMostRecent) SetCurSel(0);
  return GetWindowText();
}

bool CHistoryCombo::PreCreateWindow(CREATESTRUCTA& create) {
  if (!m_bAllowSort) create.style &= ~static_cast<LONG>(CBS_SORT);
  return CComboBox::PreCreateWindow(create);
}

std::string CHistoryCombo::entryName(int position) const {
  return m_strEntryPrefix + std::to_string(position);
}

std::string CHistoryCombo::currentEntryName() const {
  if (!m_strCurrentEntry.empty()) return m_strCurrentEntry;
  return m_strEntryPrefix.empty() ? "Last" : m_strEntryPrefix;
}

std::string CHistoryCombo::readEntry(const std::string& entry) const {
  const CWinApp* const app = AfxGetApp();
  return app != nullptr ? app->GetProfileString(m_strSection.c_str(), entry.c_str()) : std::string();
}

void CHistoryCombo::writeEntry(const std::string& entry, const char* value) const {
  if (const CWinApp* const app = AfxGetApp())
    app->WriteProfileString(m_strSection.c_str(), entry.c_str(), value);
}

// The last text read: the empty one that ended the list unless the maximum did.
std::string CHistoryCombo::loadNumberedEntries() {
  std::string text;
  int position = 0;
  do {
    text = readEntry(entryName(position++));
    if (!text.empty() && (!m_bOnlyExisting || NamesExistingPath(text))) AddString(text.c_str());
  } while (!text.empty() && position < m_nMaxItems);
  return text;
}

void CHistoryCombo::showCurrentText(const std::string& text) {
  const int item = FindStringExact(-1, text.c_str());
  if (item != CB_ERR) {
    SetCurSel(item);
  } else if ((GetStyle() & kDropDownStyles) != 0) {
    SetWindowText(text.c_str());
  }
}

void CHistoryCombo::deleteNumberedEntries(int first) const {
  for (int i = first; i < kMostEntries && !readEntry(entryName(i)).empty(); ++i)
    writeEntry(entryName(i), nullptr);
}

void CHistoryCombo::dropItemsBeyondMaximum() const {
  // A negative maximum names no item: nothing can be dropped.
  while (GetCount() > m_nMaxItems && DeleteString(m_nMaxItems) != CB_ERR) {
  }
}
