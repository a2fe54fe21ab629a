// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nurv {

/// What lies where in an ISO 9660 image (ECMA-119), in sectors of 2048 bytes.
class IsoDirectory {
public:
    struct Entry {
        std::string name; ///< without its version
        uint32_t sector = 0;
        uint32_t bytes = 0;
        bool isFolder = false;
    };

    /// The descriptor stays the caller's, and is read at offsets. Throws ToolError where this is no such image.
    explicit IsoDirectory(int descriptor);

    /// Of the whole volume.
    [[nodiscard]] uint32_t sectors() const { return m_sectors; }
    [[nodiscard]] const Entry &root() const { return m_root; }
    [[nodiscard]] std::vector<Entry> entriesOf(const Entry &folder) const;

private:
    [[nodiscard]] std::vector<uint8_t> read(uint32_t sector, uint32_t bytes) const;

    int m_descriptor;
    uint32_t m_sectors = 0;
    Entry m_root;
};

/// Reads exactly that many bytes at an offset; false where there are fewer, or with `errno`.
[[nodiscard]] bool readAllAt(int descriptor, std::span<uint8_t> bytes, uint64_t offset);

} // namespace nurv
