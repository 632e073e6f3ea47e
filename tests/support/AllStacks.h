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

// The end of main. On Windows the process ends here: under Wine the ordinary end, which unloads every library
// while threads of the system may be at work, was seen to hang once in some hundred runs. On POSIX it
// returns, for the leak check is part of the ordinary end.
int leaveMain(int exitCode);

// Nothing may wait for a person: no error boxes, no debugger; a crash prints what it can and ends the
// process.
void disableErrorBoxes();

}  // namespace testing_support
