// SPDX-License-Identifier: MIT
// The last words of a hanging test program.
#pragma once

namespace testing_support {

// Call once, early: loads and allocates what printing needs.
void prepareStackPrinting();

// Prints the call stack of every thread of the process to standard error. Allowed to leave the other threads
// interrupted or suspended: the process has to end afterwards. Bounded in time.
void printAllStacks();

// Ends the process at once, without destructors.
[[noreturn]] void endProcess(int exitCode);

// Nothing may wait for a person: no error boxes, no debugger; a crash prints what it can and ends the
// process.
void disableErrorBoxes();

}  // namespace testing_support
