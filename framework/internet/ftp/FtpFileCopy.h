// SPDX-License-Identifier: MIT
// Whole files between the server and the local disk. Both run inside FtpControl::request() and fail by
// internet::Failure, with the system's own number for what goes wrong locally.
#pragma once

#include <cstdint>
#include <string_view>

#include "framework/internet/ftp/FtpControl.h"

namespace internet {

// The local file is created before the remote one is asked for; one that this call created is deleted on
// failure, also when the thread is stopped.
void downloadFile(FtpControl& control, std::string_view remote, const char* local, bool failIfExists,
                  std::uint32_t attributes);

// Succeeds only on the server's word that it has the file.
void uploadFile(FtpControl& control, const char* local, std::string_view remote);

}  // namespace internet
