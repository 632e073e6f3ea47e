// SPDX-License-Identifier: MIT
// The commands of qxftp that change what is on the server, and those that move content in the host's memory.
#pragma once

#include "examples/qxftp/Commands.h"

using Arguments = std::vector<std::string>;

bool writeContent(const Session& session, const Arguments& arguments);
bool appendContent(const Session& session, const Arguments& arguments);
bool readContent(const Session& session, const Arguments& arguments);
bool copyFile(const Session& session, const Arguments& arguments);
bool moveFile(const Session& session, const Arguments& arguments);
bool renameFile(const Session& session, const Arguments& arguments);
bool removeFile(const Session& session, const Arguments& arguments);
bool removeDirectory(const Session& session, const Arguments& arguments);
bool createDirectory(const Session& session, const Arguments& arguments);
bool createNewDirectory(const Session& session, const Arguments& arguments);
bool downloadByHttp(const Session& session, const Arguments& arguments);
