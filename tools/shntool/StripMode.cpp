// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/StripMode.h"

#include "shntool/FileEdit.h"
#include "shntool/ModeRun.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/WavePass.h"

#include <array>
#include <vector>

namespace nurv {

void StripMode::takeOption(char option, const char *)
{
    (option == 'c' ? m_keepsChunks : m_keepsHeader) = true;
}

int StripMode::execute()
{
    if (m_keepsChunks && m_keepsHeader)
        run().messages.failWithHelp("nothing to do if not stripping headers or RIFF chunks\n");
    bool isGood = true;
    while (const std::optional<std::string> name = run().names.next()) {
        const std::optional<WaveInfo> info = run().files.examine(*name);
        isGood = info && strip(*info) && isGood;
    }
    return isGood ? 0 : 1;
}

/// Whether an odd number of data bytes is followed by a zero.
bool StripMode::hasPadByte(const WaveInfo &info) const
{
    if (info.dataBytes() % 2 == 0 || info.bytesBehindData() == 0)
        return false;
    WavePass pass(run().files, info);
    std::array<uint8_t, 1> byte{};
    return pass.isOpen() && pass.transfer(nullptr, info.dataBytes(), nullptr) && pass.read(byte) == 1 && byte[0] == 0;
}

bool StripMode::strip(const WaveInfo &info) const
{
    FileEdit edit(run(), info, "Stripping", "-stripped");
    const bool hasExtra = info.extraBytes() > 0;
    const bool isCanonical = info.header.isCanonical();
    if (!edit.checkNames())
        return false;
    if (info.isInconsistent())
        return edit.skip("file has an inconsistent header");
    if (info.missingBytes() > 0)
        return edit.skip("file seems to be truncated");
    if (!m_keepsChunks && !m_keepsHeader && isCanonical && !hasExtra)
        return edit.skip("file already has a canonical header and no extra RIFF chunks");
    if (m_keepsHeader && !hasExtra)
        return edit.skip("file already has no extra RIFF chunks");
    if (m_keepsChunks && isCanonical)
        return edit.skip("file already has a canonical header");
    const uint64_t pad = hasPadByte(info) ? 1 : 0;
    const uint64_t behind = m_keepsChunks ? info.bytesBehindData() : pad;
    const std::vector<uint8_t> header = m_keepsHeader ? headerWithSizes(info.header, info.dataBytes(), behind)
                                                      : makeWaveHeader(info.header, info.dataBytes(), behind);
    if (!edit.openInput() || !edit.openOutput() || !edit.writeHeaderSilently(header)
        || !edit.copyDataSilently(info.dataBytes()))
        return false;
    if (m_keepsChunks ? !edit.copyExtra(behind) : !edit.writeZerosSilently(pad))
        return false;
    return edit.finish();
}

} // namespace nurv
