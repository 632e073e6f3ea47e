// SPDX-License-Identifier: MIT
#include "tests/support/Json.h"

template class nlohmann::basic_json<>;
