// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/AobFiles.h"

#include "dvda/DiscNames.h"
#include "dvda/DvdAudioFormat.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace nurv {

AobFiles::AobFiles(std::string folder, std::string shown, uint32_t mostSectors)
    : m_folder(std::move(folder)), m_shown(std::move(shown)), m_mostSectors(mostSectors)
{
}

void AobFiles::write(std::span<const uint8_t> sectors)
{
    while (!sectors.empty()) {
        const uint64_t inFile = m_sectors % m_mostSectors;
        if (inFile == 0) {
            if (m_files.size() == discNames::kMostAobs)
                throw ToolError(ToolError::Kind::UnsupportedFormat, "there is more sound than a disc can hold");
            m_files.push_back(std::make_unique<TemporaryFile>(m_folder + "/.nurv-dvda"));
        }
        const size_t room = (m_mostSectors - inFile) * kDiscSectorBytes;
        const std::span<const uint8_t> piece = sectors.first(std::min(room, sectors.size()));
        if (!writeAll(m_files.back()->descriptor(), piece))
            failWrite(m_shown, errno);
        m_sectors += piece.size() / kDiscSectorBytes;
        sectors = sectors.subspan(piece.size());
    }
}

} // namespace nurv
