// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FixMode.h"

#include "shntool/ModeRun.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/Progress.h"
#include "shntool/WaveOutput.h"
#include "shntool/WavePass.h"

#include <algorithm>

namespace nurv {

FixMode::FixMode(ModeRun &run) : Mode(run) {}

FixMode::~FixMode() = default;

void FixMode::takeOption(char option, const char *)
{
    switch (option) {
    case 'b': m_shift = Shift::Backward; break;
    case 'f': m_shift = Shift::Forward; break;
    case 'u': m_shift = Shift::Nearest; break;
    case 'c': m_checksOnly = true; break;
    case 'k': m_keepsUnchanged = true; break;
    default: m_padsLast = false; break;
    }
}

int FixMode::execute()
{
    const std::vector<std::string> names = run().names.all();
    if (names.empty())
        run().messages.failWithHelp("need one or more files to process");
    examine(names);
    if (m_checksOnly)
        return needsFixing() ? 0 : 1;
    if (!needsFixing())
        run().messages.fail("everything seems fine, no need for fixing");
    run().names.sortInfos(m_infos);
    plan();
    fix(firstToWrite());
    tellPadding();
    return 0;
}

void FixMode::examine(const std::vector<std::string> &names)
{
    bool isGood = true;
    const auto refuse = [&](const char *why, const std::string &name) {
        run().messages.warn(std::string(why) + ": [" + name + "]");
        isGood = false;
    };
    for (const std::string &name : names) {
        run().messages.debugFile(m_infos.size(), name);
        std::optional<WaveInfo> info = run().files.examine(name);
        if (!info)
            run().messages.fail("could not open file: [" + name + "]");
        if (!info->isCdQuality())
            refuse("file is not CD-quality", name);
        if (info->isInconsistent())
            refuse("file has an inconsistent header", name);
        if (info->missingBytes() > 0)
            refuse("file seems to be truncated", name);
        m_infos.push_back(std::move(*info));
    }
    if (!isGood)
        run().messages.fail("could not fix files due to errors, see above");
}

void FixMode::plan()
{
    uint64_t total = 0;
    for (const WaveInfo &info : m_infos)
        total += info.dataBytes();
    uint64_t formerEnd = 0;
    uint64_t end = 0;
    for (const WaveInfo &info : m_infos) {
        Part part{.formerStart = formerEnd, .formerEnd = formerEnd + info.dataBytes(), .start = end, .end = 0};
        formerEnd = part.formerEnd;
        const uint64_t over = formerEnd % kSectorBytes;
        const bool goesForward = m_shift == Shift::Forward || (m_shift == Shift::Nearest && over >= kSectorBytes / 2);
        part.end = over == 0 ? formerEnd : formerEnd - over + (goesForward ? kSectorBytes : 0);
        end = part.end;
        m_parts.push_back(part);
    }
    m_parts.back().end = total;
    if (m_parts.back().start > total)
        run().messages.fail("track breaks cannot be shifted behind the end of the sound");
    if (total % kSectorBytes != 0)
        m_missingBytes = kSectorBytes - total % kSectorBytes;
}

/// Whether any file ends in the middle of a sector.
bool FixMode::needsFixing() const
{
    return !std::ranges::all_of(m_infos, &WaveInfo::endsOnSector);
}

size_t FixMode::firstToWrite() const
{
    if (m_keepsUnchanged)
        return 0;
    const auto changed = std::ranges::find_if_not(m_parts, &Part::isUnchanged);
    const auto first = std::min(static_cast<size_t>(changed - m_parts.begin()), m_parts.size() - 1);
    if (first > 0) {
        run().messages.warn("skipping first " + std::to_string(first) + (first == 1 ? " file" : " files") + " because "
                           + (first == 1 ? "it" : "they") + " would not be changed");
    }
    return first;
}

void FixMode::fix(size_t first)
{
    m_source = first;
    m_position = m_parts[first].start;
    for (size_t i = first; i < m_parts.size(); ++i)
        writePart(i);
    if (!m_outputs.commit(run().messages))
        run().messages.fail("failed to fix files");
}

void FixMode::failPart(Progress &progress, WaveOutput &output, const std::string &why)
{
    progress.fail();
    run().messages.warn(why);
    if (const std::string complaint = output.complaint(); !complaint.empty())
        run().messages.warn(complaint);
    m_outputs.clear();
    run().messages.fail("failed to fix files");
}

void FixMode::writePart(size_t index)
{
    constexpr uint64_t kHeader = kCanonicalHeaderBytes;
    const WaveInfo &info = m_infos[index];
    const Part &part = m_parts[index];
    const bool isLast = index + 1 == m_parts.size();
    const uint64_t soundBytes = part.end - part.start;
    const uint64_t padding = isLast && m_padsLast ? m_missingBytes : 0;
    std::string name = run().outputs.nameHere(info, "-fixed");
    std::unique_ptr<WaveOutput> opened = run().outputs.open(name, nullptr);
    Progress progress(run().messages, {.action = "Fixing",
                                      .file = info.fileName,
                                      .fileDetail = run().lengthOf(info),
                                      .link = "-->",
                                      .otherFile = name,
                                      .otherDetail = {},
                                      .totalBytes = soundBytes + kHeader});
    if (!opened) {
        progress.fail();
        m_outputs.clear();
        run().messages.fail(run().outputs.refusalOr("could not open output file: [" + name + "]"));
    }
    WaveOutput &output = m_outputs.add(name, std::move(opened));
    const std::vector<uint8_t> header = makeWaveHeader(info.header, soundBytes + padding);
    if (!output.write(header))
        failPart(progress, output, "error while writing " + std::to_string(header.size()) + "-byte WAVE header");
    copySound(index, output, progress);
    if (padding > 0) {
        if (!output.write(std::vector<uint8_t>(static_cast<size_t>(padding))))
            failPart(progress, output, "error while padding with " + std::to_string(padding) + " zero-bytes");
        progress.add(padding);
    }
    if (!output.write(std::vector<uint8_t>((soundBytes + padding) % 2)))
        failPart(progress, output, "error while NULL-padding odd-sized data chunk");
    if (!output.complete())
        failPart(progress, output, "could not complete output file: [" + name + "]");
    progress.succeed();
}

void FixMode::openSource(WaveOutput &output, Progress &progress)
{
    if (m_pass)
        return;
    const WaveInfo &info = m_infos[m_source];
    m_pass = std::make_unique<WavePass>(run().files, info);
    if (!m_pass->isOpen())
        failPart(progress, output, "could not reopen input file: [" + info.fileName + "]");
}

void FixMode::copySound(size_t index, WaveOutput &output, Progress &progress)
{
    const uint64_t end = m_parts[index].end;
    const bool isLast = index + 1 == m_parts.size();
    // A source is closed as soon as it is read, also one without any sound behind the last part.
    while (m_position < end || (isLast && m_source < m_infos.size())) {
        openSource(output, progress);
        const uint64_t sourceEnd = m_parts[m_source].formerEnd;
        const uint64_t count = std::min(end, sourceEnd) - m_position;
        if (!m_pass->transfer(&output, count, &progress))
            failPart(progress, output, "error while transferring " + std::to_string(count) + " bytes of data");
        m_position += count;
        if (m_position < sourceEnd)
            continue;
        if (!m_pass->finish())
            failPart(progress, output, "possibly truncated and/or corrupt file: [" + m_infos[m_source].fileName + "]");
        m_pass.reset();
        ++m_source;
    }
}

void FixMode::tellPadding() const
{
    const std::string missing = std::to_string(m_missingBytes);
    if (!m_padsLast) {
        run().messages.tell("Last file was not padded, "
                           + (m_missingBytes > 0 ? "though it needs " + missing + " bytes of padding.\n"
                                                 : std::string("nor was it needed.\n")));
    } else if (m_missingBytes == 0) {
        run().messages.tell("No padding needed.\n");
    } else {
        run().messages.tell("Padded last file with " + missing + " zero-bytes.\n");
    }
}

} // namespace nurv
