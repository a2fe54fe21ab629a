// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/StretchSearch.h"

#include "base/NurvFailure.h"
#include "samples/FormatCheck.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Side = JoinedSound::Side;
using Samples = std::span<const std::int32_t>;

constexpr std::uint64_t kBase = 6364136223846793005ULL;

std::uint64_t powerOfBase(std::uint64_t exponent)
{
    std::uint64_t power = 1;
    for (std::uint64_t square = kBase; exponent > 0; exponent >>= 1, square *= square) {
        if ((exponent & 1) != 0)
            power *= square;
    }
    return power;
}

[[noreturn]] void failNotFound()
{
    throw NurvFailure(u"its output is no stretch of the source"_s);
}

/// Looks for a sequence of frames in a stream of them, each of which is looked at once
/// (Knuth, Morris and Pratt).
class FrameMatcher {
public:
    FrameMatcher(Samples wanted, std::size_t channels)
        : m_wanted(wanted.begin(), wanted.end()), m_channels(channels), m_fallback(wanted.size() / channels)
    {
        for (std::size_t frame = 1, matched = 0; frame < m_fallback.size(); ++frame)
            m_fallback[frame] = matched = next(matched, m_wanted.data() + frame * channels);
    }

    /// How many frames of the samples belong to what has been looked at when the last one
    /// of the sequence has come; 0: it has not.
    [[nodiscard]] std::size_t find(Samples samples)
    {
        for (std::size_t at = 0; at < samples.size(); at += m_channels) {
            m_matched = next(m_matched, samples.data() + at);
            if (m_matched == m_fallback.size())
                return at / m_channels + 1;
        }
        return 0;
    }

    [[nodiscard]] std::size_t frames() const { return m_fallback.size(); }

private:
    [[nodiscard]] bool isEqual(std::size_t wanted, const std::int32_t *frame) const
    {
        return std::equal(frame, frame + m_channels, m_wanted.data() + wanted * m_channels);
    }

    [[nodiscard]] std::size_t next(std::size_t matched, const std::int32_t *frame) const
    {
        while (matched > 0 && !isEqual(matched, frame))
            matched = m_fallback[matched - 1];
        return isEqual(matched, frame) ? matched + 1 : 0;
    }

    std::vector<std::int32_t> m_wanted;
    std::size_t m_channels;
    /// Of each frame: how many of the first frames of the sequence end with it, too.
    std::vector<std::size_t> m_fallback;
    std::size_t m_matched = 0;
};

} // namespace

void StretchSearch::Sum::add(Samples samples)
{
    for (const std::int32_t sample : samples)
        value = value * kBase + static_cast<std::uint32_t>(sample);
}

StretchSearch::StretchSearch(const QStringList &sources, const QStringList &outputs, Progress progress,
                             ReadAheadSound::IsUnwanted isUnwanted)
    : m_sources(sources), m_outputs(outputs), m_progress(std::move(progress)), m_isUnwanted(std::move(isUnwanted))
{
}

std::int64_t StretchSearch::run()
{
    beginPass(1.0);
    if (findBeginning())
        return m_outputFrames;
    beginPass(0.2);
    measureOutputs();
    beginPass(0.5);
    if (!findSum())
        failNotFound();
    beginPass(1.0);
    if (!compareFound())
        failNotFound();
    return m_outputFrames;
}

void StretchSearch::beginPass(double partOfRest)
{
    m_passFrom = m_percent;
    m_passTo = m_percent + partOfRest * (100.0 - m_percent);
}

void StretchSearch::tell(const ReadAheadSound &sound)
{
    m_percent = std::max(m_percent, m_passFrom + sound.progress() * (m_passTo - m_passFrom));
    m_progress(m_percent);
}

/// Whether everything is proven. Otherwise the beginning comes at other places, too.
bool StretchSearch::findBeginning()
{
    ReadAheadSound source(m_sources, Side::Source, m_isUnwanted);
    ReadAheadSound output(m_outputs, Side::Output, m_isUnwanted);
    checkFormats(source, output);
    const Samples beginning = output.run();
    if (source.run().empty())
        throw NurvFailure(u"the source holds no sound"_s);
    if (beginning.empty())
        throw NurvFailure(u"the output holds no sound"_s);
    FrameMatcher matcher(beginning, output.channels());
    for (Samples samples = source.run(); !samples.empty(); samples = source.run()) {
        if (const std::size_t frames = matcher.find(samples); frames > 0) {
            source.advance(frames);
            output.advance(matcher.frames());
            return compareRest(source, output);
        }
        source.advance(samples.size() / source.channels());
        tell(source);
    }
    output.drain();
    failNotFound();
}

/// Whether what follows in the outputs follows in the sources. Goes through both to their
/// ends then, where complaints come.
bool StretchSearch::compareRest(ReadAheadSound &source, ReadAheadSound &output)
{
    for (Samples to = output.run(); !to.empty(); to = output.run()) {
        const Samples from = source.run();
        const std::size_t count = std::min(from.size(), to.size());
        if (count == 0 || std::memcmp(from.data(), to.data(), count * sizeof(std::int32_t)) != 0)
            return false;
        source.advance(count / source.channels());
        output.advance(count / output.channels());
        tell(source);
    }
    m_outputFrames = output.position();
    source.drain();
    checkWidths(source, output);
    return true;
}

void StretchSearch::measureOutputs()
{
    ReadAheadSound output(m_outputs, Side::Output, m_isUnwanted);
    for (Samples samples = output.run(); !samples.empty(); samples = output.run()) {
        m_outputSum.add(samples);
        output.advance(samples.size() / output.channels());
        tell(output);
    }
    m_outputFrames = output.position();
}

/// Whether a stretch of the sources has the sum of the outputs; `m_foundAt` tells which.
bool StretchSearch::findSum()
{
    ReadAheadSound ahead(m_sources, Side::Source, m_isUnwanted);
    ReadAheadSound behind(m_sources, Side::Source, m_isUnwanted);
    const std::size_t channels = ahead.channels();
    const std::uint64_t power =
        powerOfBase(static_cast<std::uint64_t>(m_outputFrames) * static_cast<std::uint64_t>(channels));
    Sum sumAhead;
    Sum sumBehind;
    while (ahead.position() < m_outputFrames) {
        const Samples samples = ahead.run();
        if (samples.empty())
            return false;
        const auto missing = static_cast<std::size_t>(m_outputFrames - ahead.position()) * channels;
        const Samples part = samples.first(std::min(samples.size(), missing));
        sumAhead.add(part);
        ahead.advance(part.size() / channels);
        tell(ahead);
    }
    for (;;) {
        const Samples entering = ahead.run();
        const Samples leaving = behind.run();
        const std::size_t count = std::min(entering.size(), leaving.size());
        for (std::size_t at = 0; at < count; at += channels) {
            if (sumAhead.value - sumBehind.value * power == m_outputSum.value) {
                m_foundAt = behind.position() + static_cast<std::int64_t>(at / channels);
                return true;
            }
            sumAhead.add(entering.subspan(at, channels));
            sumBehind.add(leaving.subspan(at, channels));
        }
        if (count == 0) {
            m_foundAt = behind.position();
            return sumAhead.value - sumBehind.value * power == m_outputSum.value;
        }
        ahead.advance(count / channels);
        behind.advance(count / channels);
        tell(ahead);
    }
}

bool StretchSearch::compareFound()
{
    ReadAheadSound source(m_sources, Side::Source, m_isUnwanted);
    ReadAheadSound output(m_outputs, Side::Output, m_isUnwanted);
    while (source.position() < m_foundAt) {
        const Samples samples = source.run();
        if (samples.empty())
            return false;
        source.advance(
            std::min(samples.size() / source.channels(), static_cast<std::size_t>(m_foundAt - source.position())));
        tell(source);
    }
    return compareRest(source, output);
}

} // namespace nurv
