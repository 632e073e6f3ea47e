// SPDX-License-Identifier: MIT
// The names that operations go by in message lines, and the line numbers that their failure reports carry.
// Hosts and their users look failures up by these numbers, so they are fixed and no __LINE__.
#pragma once

struct FailureSite {
  const char* name;        // in the entry line
  const char* failedName;  // in the failed line
  int line;                // in the failure report
};

namespace sites {

inline constexpr int kIPErrorLine = 1187;
inline constexpr int kAuthenticationFailedLine = 1243;
inline constexpr int kAuthenticationNeededLine = 1271;
inline constexpr int kFailureLine = 1398;
inline constexpr int kSetFirewallLine = 2466;
inline constexpr int kSetProxyLine = 2531;
inline constexpr int kConnectLine = 2817;
inline constexpr int kDisconnectLine = 2968;

inline constexpr FailureSite kGetDirectory{"FTPGetDirectory", "FTPGetDirectory", 3669};
inline constexpr FailureSite kDownloadFile{"FTPDownloadFile", "FTPDownloadFile", 3841};
inline constexpr FailureSite kUploadFile{"FTPUploadFile", "FTPUploadFile", 4004};
inline constexpr FailureSite kHasSubDir{"FTPHasSubDir", "FTPHasSubDir", 4112};
inline constexpr FailureSite kCountFolderItems{"FTPCountFolderItems", "FTPCountFolderItems", 4237};
// The worker of the directory query names the operation, not itself, in its failed line.
inline constexpr FailureSite kDirExistThr{"FTPDirExistThr", "FTPDirExist", 4589};
inline constexpr FailureSite kDirExist{"FTPDirExist", "FTPDirExist", 4746};
inline constexpr FailureSite kFileExistsThr{"FTPFileExistsThr", "FTPFileExistsThr", 5063};
inline constexpr FailureSite kFileExists{"FTPFileExists", "FTPFileExists", 5232};
inline constexpr FailureSite kCpyFileThr{"FTPCpyFileThr", "FTPCpyFileThr", 6082};
inline constexpr FailureSite kCpyFile{"FTPCpyFile", "FTPCpyFile", 6259};
inline constexpr FailureSite kMovFile{"FTPMovFile", "FTPMovFile", 6345};
inline constexpr FailureSite kRmvFileThr{"FTPRmvFileThr", "FTPRmvFileThr", 6520};
inline constexpr FailureSite kRmvFile{"FTPRmvFile", "FTPRmvFile", 6687};
inline constexpr FailureSite kRmvDirThr{"FTPRmvDirThr", "FTPRmvDirThr", 6880};
// The failed line of the directory removal has a word of its own.
inline constexpr FailureSite kRmvDir{"FTPRmvDir", "FTPRemoveDir", 7059};
inline constexpr FailureSite kCreateDirThr{"FTPCreateDirThr", "FTPCreateDirThr", 7275};
inline constexpr FailureSite kCreateDir{"FTPCreateDir", "FTPCreateDir", 7454};
inline constexpr FailureSite kCreateNewDir{"FTPCreateNewDir", "FTPCreateNewDir", 7560};
inline constexpr FailureSite kWriteFileThr{"FTPWriteFileThr", "FTPWriteFileThr", 8489};
inline constexpr FailureSite kWriteFile{"FTPWriteFile", "FTPWriteFile", 8669};
inline constexpr FailureSite kReadFileThr{"FTPReadFileThr", "FTPReadFileThr", 9015};
inline constexpr FailureSite kReadFile{"FTPReadFile", "FTPReadFile", 9201};
inline constexpr FailureSite kRenameFile{"FTPRenameFile", "FTPRenameFile", 9357};

}  // namespace sites
