// SPDX-License-Identifier: MIT
// A library with the five exports, of a version that no host knows: nobody may get as far as to call one.
#include <cstdlib>

#if defined(_WIN32)
#define EXPORTED extern "C" __declspec(dllexport)
#else
#define EXPORTED extern "C" __attribute__((visibility("default")))
#endif

EXPORTED void CreateQXIPIFInstance() { std::abort(); }
EXPORTED void FreeQXIPIFInstance() { std::abort(); }
EXPORTED void DoFTPConnect() { std::abort(); }
EXPORTED void DllAddRef() { std::abort(); }
EXPORTED void DllRelease() { std::abort(); }
