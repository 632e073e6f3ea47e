// SPDX-License-Identifier: MIT
// A library that has the name of a TLS library and one of its functions.
extern "C" __attribute__((visibility("default"))) const void* TLS_client_method() { return nullptr; }
