// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/SoundComparison.h"

#include "base/NurvFailure.h"
#include "samples/FormatCheck.h"
#include "samples/ProgressTeller.h"
#include "samples/ReadAheadSound.h"
#include "samples/SampleCount.h"
#include "samples/StretchSearch.h"

#include <algorithm>
#include <cstring>
#include <span>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Side = JoinedSound::Side;
using Samples = std::span<const std::int32_t>;

/// Sources and outputs from their first sample on: equal, or with silence behind them.
class AlignedComparison {
public:
    AlignedComparison(const QStringList &sources, const QStringList &outputs, bool allowsSilence,
                      ProgressTeller &progress, const SoundComparison::IsUnwanted &isUnwanted)
        : m_source(sources, Side::Source, isUnwanted), m_output(outputs, Side::Output, isUnwanted),
          m_allowsSilence(allowsSilence), m_progress(progress)
    {
    }

    /// Returns the frames of the outputs. Throws NurvFailure with the difference.
    std::int64_t run()
    {
        checkFormats(m_source, m_output);
        Samples from = m_source.run();
        Samples to = m_output.run();
        while (!from.empty() && !to.empty()) {
            const std::size_t count = std::min(from.size(), to.size());
            if (std::memcmp(from.data(), to.data(), count * sizeof(std::int32_t)) != 0)
                failAtFirst(from, to);
            m_source.advance(count / m_source.channels());
            m_output.advance(count / m_output.channels());
            m_progress.tell(50.0 * (m_source.progress() + m_output.progress()));
            from = m_source.run();
            to = m_output.run();
        }
        finish(to);
        return m_output.position();
    }

private:
    [[noreturn]] void failAtFirst(Samples from, Samples to) const
    {
        const auto different = std::mismatch(from.begin(), from.end(), to.begin(), to.end());
        fail(static_cast<std::size_t>(different.first - from.begin()), u"is different"_s);
    }

    /// At a sample of the current run of the outputs.
    [[noreturn]] void fail(std::size_t sample, const QString &what) const
    {
        const std::int64_t frame = m_output.position() + static_cast<std::int64_t>(sample / m_output.channels());
        throw NurvFailure(u"sample %1 of channel %2 (at %3) %4"_s.arg(frame)
                              .arg(sample % m_output.channels() + 1)
                              .arg(timeOfFrame(frame, m_output.format().sampleRateHz), what));
    }

    /// At the end of one side at least.
    void finish(Samples to)
    {
        const std::int64_t common = m_output.position();
        if (m_allowsSilence && common > 0 && m_source.run().empty())
            passSilence(to);
        // To their ends, where complaints come, and for the counts.
        m_source.drain();
        m_output.drain();
        checkWidths(m_source, m_output);
        if (m_source.position() == 0)
            throw NurvFailure(u"the source holds no sound"_s);
        if (m_output.position() == 0)
            throw NurvFailure(u"the output holds no sound"_s);
        if (common < m_source.position())
            throw NurvFailure(u"its output holds %1 of %2 samples"_s.arg(m_output.position()).arg(m_source.position()));
        if (!m_allowsSilence && common < m_output.position())
            throw NurvFailure(
                u"its output holds %1 samples, the source %2"_s.arg(m_output.position()).arg(m_source.position()));
    }

    void passSilence(Samples to)
    {
        for (; !to.empty(); to = m_output.run()) {
            const auto *const loud =
                std::find_if(to.data(), to.data() + to.size(), [](auto sample) { return sample != 0; });
            if (loud != to.data() + to.size())
                fail(static_cast<std::size_t>(loud - to.data()), u"is not silent"_s);
            m_output.advance(to.size() / m_output.channels());
        }
    }

    ReadAheadSound m_source;
    ReadAheadSound m_output;
    bool m_allowsSilence;
    ProgressTeller &m_progress;
};

std::int64_t search(const QStringList &sources, const QStringList &outputs, ProgressTeller &progress,
                    const SoundComparison::IsUnwanted &isUnwanted)
{
    StretchSearch stretch(
        sources, outputs, [&progress](double percent) { progress.tell(percent); }, isUnwanted);
    return stretch.run();
}

} // namespace

SoundComparison::Result SoundComparison::compare(const QStringList &sources, const QStringList &outputs,
                                                 Relation relation, const Progress &progress,
                                                 const IsUnwanted &isUnwanted)
{
    ProgressTeller teller(progress);
    Result result;
    try {
        teller.tell(0.0);
        result.frames =
            relation == Relation::Contained
                ? search(sources, outputs, teller, isUnwanted)
                : AlignedComparison(sources, outputs, relation == Relation::Prefix, teller, isUnwanted).run();
        result.isProven = true;
        teller.tell(100.0);
    } catch (const NurvFailure &failure) {
        result.difference = failure.reason();
    } catch (const ReadAheadSound::GivenUp &) {
        result.wasGivenUp = true;
    }
    return result;
}

} // namespace nurv
