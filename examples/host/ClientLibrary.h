// SPDX-License-Identifier: MIT
// The library's five exports, found by name, and a client that frees itself.
#pragma once

#include <memory>
#include <string>

#include "QXExports.h"
#include "examples/host/SharedLibrary.h"

class ClientLibrary {
 public:
  explicit ClientLibrary(const std::string& path)
      : m_library(path),
        create(m_library.function<PfnCreateQXIPIFInstance>("CreateQXIPIFInstance")),
        free(m_library.function<PfnFreeQXIPIFInstance>("FreeQXIPIFInstance")),
        connect(m_library.function<PfnDoFTPConnect>("DoFTPConnect")),
        addRef(m_library.function<PfnDllAddRef>("DllAddRef")),
        release(m_library.function<PfnDllRelease>("DllRelease")) {}

 private:
  SharedLibrary m_library;

 public:
  const PfnCreateQXIPIFInstance create;
  const PfnFreeQXIPIFInstance free;
  const PfnDoFTPConnect connect;
  const PfnDllAddRef addRef;
  const PfnDllRelease release;
};

// Drops the one reference that creating gave. The library and the error record must outlive it.
using Client = std::unique_ptr<TQXIPIFInt, PfnFreeQXIPIFInstance>;

// Null when the library cannot make a client.
inline Client makeClient(const ClientLibrary& library, QXErrorInfo* pErrorInfo) {
  return Client(library.create(pErrorInfo), library.free);
}
