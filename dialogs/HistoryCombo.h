// SPDX-License-Identifier: MIT
// A combo box that keeps the texts used last, the newest on top, and stores them as numbered entries in one
// section of the application's profile: prefix "Folder" gives Folder0, Folder1, ... As for every window, all
// calls belong to the thread that made it. No call reports an error: a store that cannot be read is empty.
#pragma once

#include <string>

#include "framework/ui/ComboBox.h"

// Names used recently, as an application keeps them: m_nSize texts from m_arrNames on.
struct CRecentFileList {
  int m_nSize = 0;
  const std::string* m_arrNames = nullptr;
};

class CHistoryCombo : public CComboBox {
 public:
  // Without `allowSort` the control is created without the sorted style, whatever the style asked for; a
  // control that is taken over stays as it is.
  explicit CHistoryCombo(bool allowSort) noexcept : m_bAllowSort(allowSort) {}

  // Adds the stored texts to the list and remembers where they are stored. The current text (if it is kept)
  // is selected in the list or, where the control lets a user type, put into the edit field.
  //   `currentEntry`: the entry that keeps the current text; null or "" means `prefix`, and without that
  //   "Last".
  // The current text as stored; the last numbered entry read when none is kept; "" when nothing was done
  // because `section` or `prefix` is null or `section` is empty.
  std::string LoadHistoryList(const char* section, const char* prefix, bool keepCurrent = true,
                              const char* currentEntry = nullptr);

  // Stores the list and the current text, which becomes the newest item before if `addCurrentText`. Entries
  // behind the list are deleted up to the first missing one. Nothing without a section.
  void SaveHistoryList(bool addCurrentText);

  // Puts `text` without the blanks around it on top, selects it and drops an equal item (whatever its case)
  // and what exceeds the maximum. Takes the place of AddString, which is what it does without a section or a
  // prefix. The item's index, -1 for a blank text.
  int AddHistoryItem(const char* text);

  void StoreEditText(bool ignoreIfEmpty);

  // Empties the list and, if `deleteEntries`, the store.
  void ClearHistoryList(bool deleteEntries);

  // Items beyond the maximum are dropped now.
  void SetMaxItems(int count);

  // Loading leaves out what names no existing file or directory. Takes effect at the next load.
  void SetOnlyExisting(bool onlyExisting) noexcept { m_bOnlyExisting = onlyExisting; }

  // Adds the names (null: none) as they are, selects the first if `selectMostRecent`; the control's text.
  std::string LoadFromRecentList(const CRecentFileList* list, bool selectMostRecent);

 protected:
  bool PreCreateWindow(CREATESTRUCTA& create) override;

 private:
  [[nodiscard]] std::string entryName(int position) const;
  [[nodiscard]] std::string currentEntryName() const;
  [[nodiscard]] std::string readEntry(const std::string& entry) const;
  void writeEntry(const std::string& entry, const char* value) const;  // null deletes

  std::string loadNumberedEntries();
  void showCurrentText(const std::string& text);
  void deleteNumberedEntries(int first) const;
  void dropItemsBeyondMaximum() const;

  std::string m_strSection;  // empty: nothing is stored
  std::string m_strEntryPrefix;
  std::string m_strCurrentEntry;
  BOOL m_bKeepCurrent = TRUE;
  int m_nMaxItems = 100;
  BOOL m_bAllowSort;
  BOOL m_bOnlyExisting = FALSE;
};
