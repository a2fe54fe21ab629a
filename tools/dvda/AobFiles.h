// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TemporaryFile.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace nurv {

/// The AOBs of a title set while they have no names, one after another: none is larger than a file in an image may be.
class AobFiles {
public:
    /// 1 GiB but a sector, which one extent of UDF can hold.
    static constexpr uint32_t kMostSectors = 524287;

    /// `folder`: where they get their names later, or another one of that file system. `shown`: what failures call it.
    AobFiles(std::string folder, std::string shown, uint32_t mostSectors = kMostSectors);

    /// Throws ToolError.
    void write(std::span<const uint8_t> sectors);

    [[nodiscard]] uint64_t sectors() const { return m_sectors; }
    [[nodiscard]] std::vector<std::unique_ptr<TemporaryFile>> &files() { return m_files; }

private:
    std::string m_folder;
    std::string m_shown;
    uint32_t m_mostSectors;
    uint64_t m_sectors = 0;
    std::vector<std::unique_ptr<TemporaryFile>> m_files;
};

} // namespace nurv
