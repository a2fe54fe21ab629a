// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/FormatCheck.h"

#include "base/NurvFailure.h"
#include "samples/ReadAheadSound.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QString kindOf(const SampleFormat &format)
{
    return format.isFloat ? u"floating-point numbers"_s : u"integers"_s;
}

} // namespace

void checkFormats(const ReadAheadSound &source, const ReadAheadSound &output)
{
    const SampleFormat &from = source.format();
    const SampleFormat &to = output.format();
    if (from.sampleRateHz != to.sampleRateHz)
        throw NurvFailure(
            u"its output has a sample rate of %1 instead of %2 Hz"_s.arg(to.sampleRateHz).arg(from.sampleRateHz));
    if (from.channels != to.channels)
        throw NurvFailure(u"its output has %1 instead of %2 channels"_s.arg(to.channels).arg(from.channels));
    if (from.isFloat != to.isFloat)
        throw NurvFailure(u"its output has %1 instead of %2"_s.arg(kindOf(to), kindOf(from)));
    checkWidths(source, output);
}

void checkWidths(const ReadAheadSound &source, const ReadAheadSound &output)
{
    if (output.leastBits() < source.mostBits())
        throw NurvFailure(
            u"its output has samples of %1 instead of %2 bits"_s.arg(output.leastBits()).arg(source.mostBits()));
}

} // namespace nurv
