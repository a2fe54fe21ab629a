// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/ReadAheadSound.h"

#include <QStringList>

#include <cstdint>
#include <functional>
#include <vector>

namespace nurv {

/// Proves that the outputs, joined, are one stretch of the joined sources, in at most four
/// passes and with memory for a few blocks:
///
///     1  the outputs' beginning is looked for in the sources, and what follows it compared;
///        enough unless the beginning comes several times, as silence does
///     2  the outputs' length and a sum over all of their samples are taken
///     3  the sources are read twice side by side, that far apart, which gives the sum over
///        every stretch of that length
///     4  the first stretch with the right sum is compared, sample by sample
class StretchSearch {
public:
    /// Told from 0 to 100, never less than before.
    using Progress = std::function<void(double percent)>;

    StretchSearch(const QStringList &sources, const QStringList &outputs, Progress progress,
                  ReadAheadSound::IsUnwanted isUnwanted);

    /// Returns the frames of the outputs. Throws NurvFailure with the difference, or
    /// ReadAheadSound::GivenUp.
    std::int64_t run();

private:
    /// A polynomial over samples, modulo 2 to the 64th: nobody's signature, and what it finds
    /// is compared.
    struct Sum {
        std::uint64_t value = 0;
        void add(std::span<const std::int32_t> samples);
    };

    [[nodiscard]] bool findBeginning();
    void measureOutputs();
    [[nodiscard]] bool findSum();
    [[nodiscard]] bool compareFound();
    [[nodiscard]] bool compareRest(ReadAheadSound &source, ReadAheadSound &output);
    void beginPass(double partOfRest);
    void tell(const ReadAheadSound &sound);

    QStringList m_sources;
    QStringList m_outputs;
    Progress m_progress;
    ReadAheadSound::IsUnwanted m_isUnwanted;
    double m_passFrom = 0.0;
    double m_passTo = 0.0;
    double m_percent = 0.0;
    std::int64_t m_outputFrames = 0;
    Sum m_outputSum;
    std::int64_t m_foundAt = 0;
};

} // namespace nurv
