// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/CatMode.h"

#include "shntool/FileWaveOutput.h"
#include "shntool/ModeRun.h"
#include "shntool/Progress.h"
#include "shntool/WavePass.h"

#include <algorithm>

#include <unistd.h>

namespace nurv {

void CatMode::takeOption(char option, const char *)
{
    switch (option) {
    case 'c': m_hidesExtra = true; break;
    case 'd': m_hidesData = true; break;
    case 'e': m_hidesHeader = true; break;
    default: m_hidesPadByte = true; break;
    }
}

int CatMode::execute()
{
    if (m_hidesExtra && m_hidesData && m_hidesHeader)
        run().messages.failWithHelp("nothing to do if WAVE header, data and extra RIFF chunks are suppressed");
    bool isGood = true;
    while (const std::optional<std::string> name = run().names.next()) {
        const std::optional<WaveInfo> info = run().files.examine(*name);
        isGood = info && write(*info) && isGood;
    }
    return isGood ? 0 : 1;
}

uint64_t CatMode::shownBytes(const WaveInfo &info) const
{
    return info.totalBytes() - (m_hidesHeader ? std::min<uint64_t>(info.header.bytes.size(), info.totalBytes()) : 0);
}

bool CatMode::write(const WaveInfo &info) const
{
    Progress progress(run().messages, {.action = "Catenating",
                                      .file = info.fileName,
                                      .fileDetail = run().lengthOf(info),
                                      .link = {},
                                      .otherFile = {},
                                      .otherDetail = {},
                                      .totalBytes = shownBytes(info)});
    if (m_hidesHeader && m_hidesData && info.extraBytes() == 0) {
        progress.fail();
        run().messages.warn("input file contains no extra RIFF chunks -- nothing to do");
        return false;
    }
    const auto skip = [&](const std::string &why) {
        progress.fail();
        run().messages.fail(why);
    };
    StreamWaveOutput output(STDOUT_FILENO);
    WavePass pass(run().files, info);
    if (!pass.isOpen())
        skip("could not open file: [" + info.fileName + "]");
    if (!m_hidesHeader) {
        if (!output.write(info.header.bytes))
            skip("error while writing " + std::to_string(info.header.bytes.size()) + "-byte WAVE header");
        progress.add(info.header.bytes.size());
    }
    if (!pass.transfer(m_hidesData ? nullptr : &output, info.dataBytes(), &progress))
        skip("error while transferring " + std::to_string(info.dataBytes()) + " bytes of data");
    const uint64_t pad = info.bytesBehindData() - info.extraBytes();
    if (!pass.transfer(m_hidesData || m_hidesPadByte ? nullptr : &output, pad, &progress))
        skip("error while reading possible NULL pad byte");
    if (!pass.transfer(m_hidesExtra ? nullptr : &output, info.extraBytes(), m_hidesExtra ? nullptr : &progress))
        skip("error while transferring " + std::to_string(info.extraBytes()) + " extra bytes");
    if (!pass.finish())
        skip("possibly truncated and/or corrupt file: [" + info.fileName + "]");
    progress.succeed();
    return true;
}

} // namespace nurv
