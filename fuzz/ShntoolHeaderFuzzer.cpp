// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/RunMessages.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/TimeText.h"
#include "shntool/WaveHeaderReader.h"
#include "shntool/WaveInfo.h"
#include "shntool/WaveSource.h"

#include <cstdlib>

namespace {

class BytesSource final : public nurv::PieceSource {
public:
    explicit BytesSource(std::span<const uint8_t> bytes) { give(bytes); }

protected:
    bool makePiece() override { return false; }
};

nurv::WaveHeaderFault read(std::span<const uint8_t> bytes, nurv::WaveHeader &header)
{
    nurv::RunMessages messages("shntool", "len");
    messages.isQuiet = true;
    BytesSource source(bytes);
    return nurv::readWaveHeader(source, "a.wav", messages, header);
}

} // namespace

/// Reads the head of a WAV file, tells all that follows from it, and writes it anew: what was written has to tell the
/// same.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    nurv::WaveInfo info;
    if (read({data, size}, info.header) != nurv::WaveHeaderFault::None)
        return 0;
    info.actualBytes = size;
    static_cast<void>(info.padByte());
    static_cast<void>(info.isBlockAligned());
    static_cast<void>(info.extraBytes());
    static_cast<void>(info.missingBytes());
    static_cast<void>(info.ratio());
    static_cast<void>(nurv::TimeText(true).of(info.header, info.dataBytes()));
    for (const uint64_t dataBytes : {info.dataBytes(), uint64_t{1} << 40}) {
        nurv::WaveHeader again;
        if (read(nurv::makeWaveHeader(info.header, dataBytes), again) != nurv::WaveHeaderFault::None
            || again.dataBytes != dataBytes || again.channels != info.header.channels
            || again.bitsPerSample != info.header.bitsPerSample)
            std::abort();
        nurv::WaveHeader kept;
        if (read(nurv::headerWithSizes(info.header, dataBytes, 0), kept) != nurv::WaveHeaderFault::None
            || kept.dataBytes != dataBytes)
            std::abort();
    }
    return 0;
}
