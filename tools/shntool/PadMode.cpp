// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/PadMode.h"

#include "shntool/FileEdit.h"
#include "shntool/ModeRun.h"
#include "shntool/PcmWaveHeader.h"

namespace nurv {

int PadMode::execute()
{
    bool isGood = true;
    while (const std::optional<std::string> name = run().names.next()) {
        const std::optional<WaveInfo> info = run().files.examine(*name);
        isGood = info && pad(*info) && isGood;
    }
    return isGood ? 0 : 1;
}

bool PadMode::pad(const WaveInfo &info) const
{
    if (!info.isCdQuality()) {
        run().messages.warn("file is not CD-quality: [" + info.fileName + "]");
        return false;
    }
    if (info.endsOnSector()) {
        run().messages.warn("file is already sector-aligned: [" + info.fileName + "]");
        return false;
    }
    const uint64_t padding = kSectorBytes - info.dataBytes() % kSectorBytes;
    const std::string zeros = std::to_string(padding) + " zero-bytes";
    FileEdit edit(run(), info, m_padsFront ? "Pre-padding" : "Post-padding", "-padded");
    if (!edit.checkNames() || !edit.openInput() || !edit.openOutput()
        || !edit.writeHeader(headerWithSizes(info.header, info.dataBytes() + padding, info.extraBytes())))
        return false;
    if (m_padsFront && !edit.writeZeros(padding, "error while pre-padding with " + zeros))
        return false;
    if (!edit.copyData(info.dataBytes()))
        return false;
    if (!m_padsFront && !edit.writeZeros(padding, "error while post-padding with " + zeros))
        return false;
    // The padded data has an even number of bytes.
    if (!edit.skipData(info.bytesBehindData() - info.extraBytes(), "error while discarding NULL pad byte"))
        return false;
    return edit.copyExtra(info.extraBytes()) && edit.finish();
}

} // namespace nurv
