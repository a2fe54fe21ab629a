// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/SoundLengthCheck.h"

#include "samples/SampleCount.h"
#include "samples/SoundLength.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// All files of one side together.
struct Side {
    std::optional<std::int64_t> frames = 0; ///< nothing when one of them does not tell
    bool isBacked = true; ///< all of them
    int sampleRateHz = 0;
    int channels = 0;
};

void add(Side &side, const SoundLength &length, std::optional<std::int64_t> frames)
{
    std::int64_t sum = 0;
    const bool isKnown = side.frames && frames && !__builtin_add_overflow(*side.frames, *frames, &sum);
    side.frames = isKnown ? std::optional(sum) : std::nullopt;
    side.isBacked = side.isBacked && length.isBacked;
    side.sampleRateHz = length.sampleRateHz;
    side.channels = length.channels;
}

/// The length of a source is what is there, and what its header promises when that is more.
std::optional<std::int64_t> framesOfSource(const SoundLength &length)
{
    if (!length.heldFrames || !length.declaredFrames)
        return length.heldFrames ? length.heldFrames : length.declaredFrames;
    return std::max(*length.heldFrames, *length.declaredFrames);
}

} // namespace

SoundLengthCheck SoundLengthCheck::ofLossy(const QString &source, const QString &output)
{
    // More than the delay of any of the encoders and the rest of its last frame.
    constexpr double kMostSecondsApart = 0.25;
    constexpr std::int64_t kUnknown = -1;
    const std::optional<SoundLength> before = soundLength(source);
    const std::optional<SoundLength> made = soundLength(output);
    if (!made)
        return {u"its output is no sound file"_s, true};
    const std::int64_t wanted = before ? framesOfSource(*before).value_or(kUnknown) : kUnknown;
    const std::int64_t frames = made->declaredFrames.value_or(made->roughFrames.value_or(kUnknown));
    if (frames == 0)
        return {u"its output holds no sound"_s, true};
    if (wanted == 0)
        return {u"it holds no sound"_s, true};
    if (made->heldFrames && made->declaredFrames && *made->heldFrames < *made->declaredFrames)
        return {u"its output is not whole: its header promises %1 samples, it holds %2"_s.arg(*made->declaredFrames)
                    .arg(*made->heldFrames),
                true};
    if (wanted == kUnknown || frames == kUnknown || before->sampleRateHz <= 0 || made->sampleRateHz <= 0)
        return {std::nullopt, false};
    if (before->channels != made->channels)
        return {u"its output has %1 channels instead of %2"_s.arg(made->channels).arg(before->channels), true};
    const double apart = static_cast<double>(frames) / made->sampleRateHz
                         - static_cast<double>(wanted) / before->sampleRateHz;
    if (std::abs(apart) > kMostSecondsApart) {
        return {u"its output lasts %1 instead of %2"_s.arg(timeOfFrame(frames, made->sampleRateHz),
                                                           timeOfFrame(wanted, before->sampleRateHz)),
                true};
    }
    return {std::nullopt, before->isBacked};
}

SoundLengthCheck SoundLengthCheck::of(const QStringList &sources, const QStringList &outputs)
{
    Side source;
    std::optional<QString> damage;
    for (const QString &path : sources) {
        const std::optional<SoundLength> length = soundLength(path);
        add(source, length.value_or(SoundLength{}), length ? framesOfSource(*length) : std::nullopt);
        if (length && length->heldFrames && length->declaredFrames && *length->heldFrames < *length->declaredFrames) {
            damage = u"damaged: its header promises %1 samples, the file holds %2"_s.arg(*length->declaredFrames)
                         .arg(*length->heldFrames);
        }
    }
    Side output;
    for (const QString &path : outputs) {
        const std::optional<SoundLength> length = soundLength(path);
        if (!length && source.frames)
            return {u"its output is no sound file"_s, true};
        add(output, length.value_or(SoundLength{}), length ? length->declaredFrames : std::nullopt);
        if (length && length->heldFrames && length->declaredFrames && *length->heldFrames != *length->declaredFrames) {
            return {u"its output is not whole: its header promises %1 samples, it holds %2"_s
                        .arg(*length->declaredFrames)
                        .arg(*length->heldFrames),
                    true};
        }
    }
    if (output.frames && *output.frames == 0)
        return {damage ? damage : u"its output holds no sound"_s, true};
    if (source.channels > 0 && output.channels > 0
        && (source.channels != output.channels || source.sampleRateHz != output.sampleRateHz)) {
        return {u"its output has %1 channels at %2 Hz instead of %3 at %4 Hz"_s.arg(output.channels)
                    .arg(output.sampleRateHz)
                    .arg(source.channels)
                    .arg(source.sampleRateHz),
                true};
    }
    if (!source.frames || !output.frames)
        return {std::nullopt, false};
    if (*output.frames < *source.frames) {
        return {damage ? damage
                       : u"its output holds %1 of %2 samples"_s.arg(*output.frames).arg(*source.frames),
                true};
    }
    return {std::nullopt, source.isBacked};
}

} // namespace nurv
