// SPDX-License-Identifier: MIT
#include "framework/internet/WholeFile.h"

#include <utility>

#include "framework/internet/ftp/FtpFileCopy.h"
#include "framework/internet/ftp/RemotePart.h"

CFileDownload::CFileDownload(const char* local, bool failIfExists, std::uint32_t attributes, bool goesOn)
    : m_file(std::make_unique<internet::FileDownload>(local, failIfExists, attributes, goesOn)) {}

CFileDownload::~CFileDownload() = default;

bool CFileDownload::HoldsPart() const noexcept { return m_file->holdsPart(); }

void CFileDownload::Drop() noexcept { m_file->drop(); }

CFileUpload::CFileUpload(const char* local, bool goesOn, internet::UploadWatch watch)
    : m_file(std::make_unique<internet::FileUpload>(local, goesOn, std::move(watch))) {}

CFileUpload::~CFileUpload() = default;

CFilePart::CFilePart(bool goesOn) : m_part(std::make_unique<internet::RemotePart>(goesOn)) {}

CFilePart::~CFilePart() = default;

std::uint64_t CFilePart::Done() const noexcept { return m_part->done(); }

void CFilePart::Add(std::uint32_t count) noexcept { m_part->add(count); }

void CFilePart::BrokenOff(std::uint32_t error) noexcept {
  if (!m_part->outlives(error)) m_part->forget();
}

void CFilePart::Forget() noexcept { m_part->forget(); }
