// SPDX-License-Identifier: MIT
// Whole files between the server and the local disk. Both run inside FtpControl::request() and fail by
// internet::Failure, with the system's own number for what goes wrong locally.
#pragma once

#include <cstdint>

#include "framework/internet/ftp/FtpControl.h"

namespace internet {

// The local file is created before anything is sent; one that this call created is deleted on failure, also
// when the thread is stopped.
void downloadFile(FtpControl& control, const char* remote, const char* local, bool failIfExists,
                  std::uint32_t attributes);

// Succeeds only on the server's word that it has the file.
void uploadFile(FtpControl& control, const char* local, const char* remote);

}  // namespace internet
