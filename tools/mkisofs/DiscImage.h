// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "mkisofs/AuthoredFolder.h"
#include "mkisofs/IsoDirectory.h"

#include <cstdint>
#include <vector>

namespace nurv {

/// The image of a folder, made but not named yet: the sectors of its tracks are put right, then all of it is held
/// against the folder.
class DiscImage {
public:
    /// The descriptor stays the caller's, open for reading and writing. Throws ToolError(Damaged) for an image in which
    /// the files do not lie as they must.
    DiscImage(int descriptor, const AuthoredFolder &folder);

    /// Puts the sectors of this image into its AUDIO_PP.IFO. Throws ToolError.
    void putSectors();

    /// Reads image and folder. Throws ToolError(Damaged) where they differ.
    void compare() const;

private:
    void findFiles();
    void checkSizes() const;
    [[nodiscard]] uint32_t sectorOf(const std::string &name) const;
    void compareFile(const AuthoredFolder::File &file, uint32_t sector) const;

    int m_descriptor;
    const AuthoredFolder &m_folder;
    std::vector<uint32_t> m_sectors; ///< of the folder's files, in their order
    std::vector<uint8_t> m_simpleManager;
};

} // namespace nurv
