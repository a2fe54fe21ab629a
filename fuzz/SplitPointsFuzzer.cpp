// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/RunMessages.h"
#include "shntool/CueSheet.h"
#include "shntool/LengthValue.h"
#include "shntool/NumberFormat.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/WaveInfo.h"

#include <cstdlib>
#include <sstream>

/// Reads a cue sheet or a list of places, turns the places into bytes of two kinds of sound, and names files. The first
/// line is the format of names too.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(data, data + size);
    std::istringstream input(text);
    const nurv::CueSheet sheet = nurv::CueSheet::read(input);
    nurv::RunMessages messages("shntool", "split");
    messages.isQuiet = true;
    const nurv::WaveHeader cd = nurv::pcmHeader(44100, 2, 16);
    const nurv::WaveHeader studio = nurv::pcmHeader(96000, 6, 24);
    for (const std::string &place : sheet.places) {
        try {
            const nurv::LengthValue value = nurv::LengthValue::parse(place);
            const bool isTime = value.unit != nurv::LengthValue::Unit::Bytes;
            if (isTime
                && (value.inBytes(cd, messages) % nurv::kSectorBytes != 0 || value.inBytes(studio, messages) % 18 != 0))
                std::abort();
        } catch (const nurv::LengthValue::Fault &) {
            continue;
        }
    }
    const std::string format = text.substr(0, text.find('\n'));
    static_cast<void>(nurv::formattedNumber(format, 7));
    const nurv::CueNames names(format.substr(0, 64), format.substr(0, 16));
    for (size_t i = 0; i < sheet.tracks.size() && i < 256; ++i)
        static_cast<void>(names.nameOf(sheet, i, "01"));
    return 0;
}
