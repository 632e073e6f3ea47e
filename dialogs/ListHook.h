// SPDX-License-Identifier: MIT
// Watches the calls of the window procedures of the dialog's thread: filters the dialog's list whenever it is
// asked for the number of its selected items, and takes the selected names when it goes away.
#pragma once

// For the calling thread; a hook that is still there goes first.
void InstallListHook() noexcept;
void RemoveListHook() noexcept;
