// SPDX-License-Identifier: MIT
#include "framework/internet/WholeFile.h"

#include "framework/internet/ftp/FtpFileCopy.h"

CFileDownload::CFileDownload(const char* local, bool failIfExists, std::uint32_t attributes, bool goesOn)
    : m_file(std::make_unique<internet::FileDownload>(local, failIfExists, attributes, goesOn)) {}

CFileDownload::~CFileDownload() = default;

bool CFileDownload::HoldsPart() const noexcept { return m_file->holdsPart(); }

void CFileDownload::Drop() noexcept { m_file->drop(); }

CFileUpload::CFileUpload(const char* local, bool goesOn)
    : m_file(std::make_unique<internet::FileUpload>(local, goesOn)) {}

CFileUpload::~CFileUpload() = default;
