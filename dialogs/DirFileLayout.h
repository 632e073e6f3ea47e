// SPDX-License-Identifier: MIT
// Where the controls of the directory-or-file dialog stand: the system's dialog without its file-name box.
#pragma once

#include "framework/ui/Edit.h"

// OK goes to the left of Cancel, and the list area grows down to the two. Hides the file-name box.
void PlaceButtonsAndList(HWND dialog) noexcept;

// Empties the file-name label and puts it where the dialog has room for it.
void PlaceFileNameLabel(HWND dialog) noexcept;

// The hidden edit below the file-name label. Throws std::runtime_error when the system makes none.
void MakeFolderEdit(HWND dialog, CEdit& edit, const char* folder);

void HideFileTypes(HWND dialog) noexcept;

// Makes room for the file types below the folder edit.
void PlaceFileTypes(HWND dialog, const CEdit& folderEdit) noexcept;

// On its visible owner, or on the work area of its screen; within that work area in any case.
void CentreOnOwner(HWND dialog) noexcept;
