// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/JoinMode.h"

#include "shntool/ModeRun.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/Progress.h"
#include "shntool/SameFormat.h"
#include "shntool/WaveOutput.h"
#include "shntool/WavePass.h"

#include <algorithm>

namespace nurv {

JoinMode::JoinMode(ModeRun &run) : Mode(run) {}

JoinMode::~JoinMode() = default;

void JoinMode::takeOption(char option, const char *)
{
    m_padding = option == 'b' ? Padding::Front : option == 'e' ? Padding::End : Padding::None;
}

int JoinMode::execute()
{
    const std::vector<std::string> names = run().names.all();
    if (names.size() < 2)
        run().messages.failWithHelp("need two or more files to process");
    std::vector<WaveInfo> infos = examine(names);
    run().names.sortInfos(infos);
    join(infos);
    tellPadding();
    if (m_isComplete)
        return 0;
    run().messages.warn(m_output->complaint());
    m_output.reset();
    run().messages.fail("failed to join files");
}

std::vector<WaveInfo> JoinMode::examine(const std::vector<std::string> &names) const
{
    std::vector<WaveInfo> infos;
    for (const std::string &name : names) {
        run().messages.debugFile(infos.size(), name);
        std::optional<WaveInfo> info = run().files.examine(name);
        if (!info)
            run().messages.fail("could not open file: [" + name + "]");
        if (info->isInconsistent())
            run().messages.fail("file has an inconsistent header: [" + name + "]");
        if (info->missingBytes() > 0)
            run().messages.fail("file seems to be truncated: [" + name + "]");
        infos.push_back(std::move(*info));
    }
    if (const char *difference = differenceAmong(infos))
        run().messages.fail(std::string(difference) + " differs among these files");
    return infos;
}

void JoinMode::join(const std::vector<WaveInfo> &infos)
{
    for (const WaveInfo &info : infos)
        m_dataBytes += info.dataBytes();
    m_isCdQuality = infos.front().isCdQuality();
    if (m_isCdQuality && m_dataBytes % kSectorBytes != 0)
        m_missingBytes = kSectorBytes - m_dataBytes % kSectorBytes;
    m_paddedBytes = m_dataBytes + (m_padding == Padding::None ? 0 : m_missingBytes);
    m_name = run().outputs.nameOf("joined", "");
    for (size_t i = 0; i < infos.size(); ++i)
        addFile(infos[i], i == 0, i + 1 == infos.size());
}

Progress JoinMode::progressOf(const WaveInfo &info) const
{
    return Progress(run().messages, {.action = "Joining",
                                    .file = info.fileName,
                                    .fileDetail = run().lengthOf(info),
                                    .link = "-->",
                                    .otherFile = m_name,
                                    .otherDetail = run().time.of(info.header, m_paddedBytes),
                                    .totalBytes = info.totalBytes()});
}

void JoinMode::openOutput(const WaveInfo &first, Progress &progress)
{
    m_output = run().outputs.open(m_name, &progress);
    if (!m_output)
        run().messages.fail(run().outputs.refusalOr("could not open output file"));
    const std::vector<uint8_t> header = makeWaveHeader(first.header, m_paddedBytes);
    if (!m_output->write(header))
        failFile(progress, "error while writing " + std::to_string(header.size()) + "-byte WAVE header");
    progress.add(header.size());
}

void JoinMode::failFile(Progress &progress, const std::string &why)
{
    progress.fail();
    run().messages.warn(why);
    if (const std::string complaint = m_output ? m_output->complaint() : std::string(); !complaint.empty())
        run().messages.warn(complaint);
    m_output.reset();
    run().messages.fail("failed to join files");
}

void JoinMode::addFile(const WaveInfo &info, bool isFirst, bool isLast)
{
    Progress progress = progressOf(info);
    const auto pad = [&](const char *how) {
        const std::vector<uint8_t> zeros(static_cast<size_t>(m_missingBytes));
        if (!m_output->write(zeros)) {
            failFile(progress, std::string("error while ") + how + "-padding with " + std::to_string(m_missingBytes)
                                   + " zero-bytes");
        }
        progress.add(m_missingBytes);
    };
    if (isFirst) {
        openOutput(info, progress);
        if (m_padding == Padding::Front)
            pad("pre");
    }
    WavePass pass(run().files, info);
    if (!pass.isOpen())
        failFile(progress, "could not reopen input file");
    if (!pass.transfer(m_output.get(), info.dataBytes(), &progress))
        failFile(progress, "error while transferring " + std::to_string(info.dataBytes()) + " bytes of data");
    if (!pass.finish())
        failFile(progress, "possibly truncated and/or corrupt file: [" + info.fileName + "]");
    if (isLast) {
        if (m_padding == Padding::End)
            pad("post");
        const std::vector<uint8_t> oddByte(m_paddedBytes % 2);
        if (!m_output->write(oddByte))
            failFile(progress, "error while NULL-padding odd-sized data chunk");
        m_isComplete = m_output->complete();
        if (m_isComplete && !m_output->commit())
            failFile(progress, "could not complete output file: [" + m_name + "]");
    }
    progress.succeed();
}

void JoinMode::tellPadding() const
{
    if (!m_isCdQuality)
        return;
    const std::string missing = std::to_string(m_missingBytes);
    if (m_padding == Padding::None) {
        run().messages.tell("Output file was not padded, "
                           + (m_missingBytes > 0 ? "though it needs " + missing + " bytes of padding.\n"
                                                 : std::string("nor was it needed.\n")));
    } else if (m_missingBytes == 0) {
        run().messages.tell("No padding needed.\n");
    } else {
        run().messages.tell(std::string(m_padding == Padding::Front ? "Pre" : "Post") + "-padded output file with "
                           + missing + " zero-bytes.\n");
    }
}

} // namespace nurv
