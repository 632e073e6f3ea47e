// SPDX-License-Identifier: MIT
// How soon an operation comes back that its host cancels: the seconds from the answer of OnPoll to the
// return.
#pragma once

#include "bench/Operations.h"

// A copy of the file of the first argument to the second, cancelled when its content is on the way.
double cancelCopy(TQXIPIFInt& client, const Arguments& arguments);

// The same of a web server's object to a local file.
double cancelHttp(TQXIPIFInt& client, const Arguments& arguments);
