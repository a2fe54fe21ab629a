// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mkisofs/IsoDirectory.h"

#include "dvda/DvdAudioFormat.h"
#include "support/Bytes.h"
#include "support/ToolError.h"

#include <cerrno>
#include <string_view>

#include <unistd.h>

namespace nurv {

namespace {

constexpr uint32_t kVolumeSector = 16;
constexpr size_t kLeastRecordBytes = 33;
/// Of folders here: those of a disc have a sector.
constexpr uint32_t kMostFolderBytes = 1 << 20;

[[noreturn]] void refuse()
{
    throw ToolError(ToolError::Kind::Damaged, "the image that was made is no ISO 9660 image");
}

/// A directory record of ECMA-119, 9.1.
IsoDirectory::Entry entryOf(std::span<const uint8_t> record)
{
    constexpr uint8_t kFolderFlag = 2;
    if (record.size() < kLeastRecordBytes || record[32] > record.size() - kLeastRecordBytes)
        refuse();
    const std::span<const uint8_t> name = record.subspan(kLeastRecordBytes, record[32]);
    IsoDirectory::Entry entry{.name = std::string(name.begin(), name.end()),
                              .sector = littleEndian32(record.data() + 2),
                              .bytes = littleEndian32(record.data() + 10),
                              .isFolder = (record[25] & kFolderFlag) != 0};
    entry.name = entry.name.substr(0, entry.name.find(';'));
    return entry;
}

} // namespace

bool readAllAt(int descriptor, std::span<uint8_t> bytes, uint64_t offset)
{
    while (!bytes.empty()) {
        const ssize_t count = ::pread(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 0)
            errno = EIO;
        if (count <= 0)
            return false;
        bytes = bytes.subspan(static_cast<size_t>(count));
        offset += static_cast<uint64_t>(count);
    }
    return true;
}

IsoDirectory::IsoDirectory(int descriptor) : m_descriptor(descriptor)
{
    const std::vector<uint8_t> volume = read(kVolumeSector, kDiscSectorBytes);
    constexpr std::string_view kPrimaryVolume("\x01"
                                              "CD001",
                                              6);
    if (!startsWith(volume, kPrimaryVolume))
        refuse();
    m_sectors = littleEndian32(volume.data() + 80);
    m_root = entryOf(std::span(volume).subspan(156, kLeastRecordBytes + 1));
}

std::vector<IsoDirectory::Entry> IsoDirectory::entriesOf(const Entry &folder) const
{
    if (!folder.isFolder || folder.bytes > kMostFolderBytes)
        refuse();
    const std::vector<uint8_t> bytes = read(folder.sector, folder.bytes);
    std::vector<Entry> entries;
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = bytes[at];
        // No record goes from one sector to the next: what is left of a sector is zero.
        if (length == 0) {
            at = (at / kDiscSectorBytes + 1) * kDiscSectorBytes;
            continue;
        }
        if (length > bytes.size() - at)
            refuse();
        Entry entry = entryOf(std::span(bytes).subspan(at, length));
        // The folder itself and the one that it is in.
        const bool isSpecial = entry.name.size() == 1 && static_cast<uint8_t>(entry.name.front()) <= 1;
        if (!isSpecial)
            entries.push_back(std::move(entry));
        at += length;
    }
    return entries;
}

std::vector<uint8_t> IsoDirectory::read(uint32_t sector, uint32_t bytes) const
{
    std::vector<uint8_t> read(bytes);
    if (!readAllAt(m_descriptor, read, uint64_t{sector} * kDiscSectorBytes))
        refuse();
    return read;
}

} // namespace nurv
