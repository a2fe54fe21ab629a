// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mkisofs/DiscImage.h"

#include "dvda/DiscNames.h"
#include "dvda/DvdAudioFormat.h"
#include "mkisofs/TrackSectors.h"
#include "support/Bytes.h"
#include "support/InputFile.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <sys/stat.h>

namespace nurv {

namespace {

constexpr size_t kCompareBytes = size_t{1} << 20;
/// Where UDF begins to be read (ECMA-167, 3/10.2).
constexpr uint64_t kAnchorSector = 256;
constexpr uint16_t kAnchorTag = 2;

[[noreturn]] void fail(const std::string &why)
{
    throw ToolError(ToolError::Kind::Damaged, "the image that was made is wrong: " + why);
}

using Entries = std::vector<IsoDirectory::Entry>;

const IsoDirectory::Entry &entryIn(const Entries &entries, const std::string &name)
{
    const auto found =
        std::ranges::find_if(entries, [&](const IsoDirectory::Entry &entry) { return entry.name == name; });
    if (found == entries.end())
        fail(name + " is missing");
    return *found;
}

} // namespace

DiscImage::DiscImage(int descriptor, const AuthoredFolder &folder) : m_descriptor(descriptor), m_folder(folder)
{
    findFiles();
    checkSizes();
}

void DiscImage::findFiles()
{
    const IsoDirectory image(m_descriptor);
    const Entries roots = image.entriesOf(image.root());
    if (roots.size() != 2 || !image.entriesOf(entryIn(roots, discNames::kVideoFolder)).empty())
        fail("it holds something else than the folder");
    const Entries entries = image.entriesOf(entryIn(roots, discNames::kAudioFolder));
    if (entries.size() != m_folder.files().size())
        fail("it holds something else than the folder");
    for (const AuthoredFolder::File &file : m_folder.files()) {
        const IsoDirectory::Entry &entry = entryIn(entries, file.name);
        if (entry.isFolder || entry.bytes != file.bytes)
            fail(file.name + " has another size");
        m_sectors.push_back(entry.sector);
    }
    struct stat status {};
    if (::fstat(m_descriptor, &status) != 0)
        failRead("the image", errno);
    if (static_cast<uint64_t>(status.st_size) < uint64_t{image.sectors()} * kDiscSectorBytes)
        fail("it ends too early");
}

void DiscImage::checkSizes() const
{
    for (size_t i = 1; i < m_sectors.size(); ++i) {
        if (m_sectors[i] != m_sectors[i - 1] + m_folder.files()[i - 1].sectors())
            fail(m_folder.files()[i].name + " does not follow " + m_folder.files()[i - 1].name);
    }
    std::array<uint8_t, 2> tag{};
    if (!readAllAt(m_descriptor, tag, kAnchorSector * kDiscSectorBytes) || littleEndian16(tag.data()) != kAnchorTag)
        fail("it holds no UDF file system");
}

uint32_t DiscImage::sectorOf(const std::string &name) const
{
    const auto found =
        std::ranges::find_if(m_folder.files(), [&](const AuthoredFolder::File &file) { return file.name == name; });
    return m_sectors[static_cast<size_t>(found - m_folder.files().begin())];
}

void DiscImage::putSectors()
{
    uint64_t sectors = 0;
    for (const AuthoredFolder::File &file : m_folder.files()) {
        if (file.name.ends_with(".AOB"))
            sectors += file.sectors();
    }
    m_simpleManager = m_folder.read(discNames::kSimpleManager);
    const std::vector<SectorRange> tracks = trackSectors(m_folder.read(discNames::kTitleSet), sectors);
    putTrackSectors(m_simpleManager, tracks, sectorOf(discNames::aob(1)));
    const uint64_t offset = uint64_t{sectorOf(discNames::kSimpleManager)} * kDiscSectorBytes;
    if (!writeAllAt(m_descriptor, m_simpleManager, offset))
        failWrite("the image", errno);
}

void DiscImage::compare() const
{
    for (size_t i = 0; i < m_sectors.size(); ++i)
        compareFile(m_folder.files()[i], m_sectors[i]);
}

void DiscImage::compareFile(const AuthoredFolder::File &file, uint32_t sector) const
{
    const bool isPatched = file.name == discNames::kSimpleManager;
    InputFile source(m_folder.pathOf(file.name));
    std::vector<uint8_t> expected(kCompareBytes);
    std::vector<uint8_t> found(kCompareBytes);
    for (uint64_t done = 0; done < file.bytes;) {
        const auto count = static_cast<size_t>(std::min<uint64_t>(kCompareBytes, file.bytes - done));
        source.readExactly(std::span(expected).first(count));
        if (isPatched)
            std::copy_n(m_simpleManager.begin() + static_cast<std::ptrdiff_t>(done), count, expected.begin());
        const std::span<uint8_t> piece = std::span(found).first(count);
        if (!readAllAt(m_descriptor, piece, uint64_t{sector} * kDiscSectorBytes + done))
            failRead("the image", errno);
        if (!std::ranges::equal(piece, std::span(expected).first(count)))
            fail(file.name + " is not what the folder holds");
        done += count;
    }
    source.checkEnd();
}

} // namespace nurv
