// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/TaskOutcome.h"
#include "samples/SoundComparison.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

#include <sys/stat.h>

namespace nurv {

/// What a job takes in and lets go: its sources, what they looked like before it read
/// them, every doubt about them, the proof that its outputs hold all of their sound, and
/// their deletion. For one source or many, one output, many or none.
///
///     rememberSources ──> the job works ──> [doubt] ──> examine ──> retire
///
/// Used by one thread at a time; `examine` blocks for the decoding of both sides and is
/// made for workers.
class SourceRetirement {
public:
    struct Wishes {
        bool deletesSources = false;
        /// Both sides are decoded and compared before anything is deleted.
        bool proves = true;
        /// The sources go although the outputs do not hold all of their tags, pictures, chunks.
        bool dropsMetadata = false;
        /// Whether a decoder that complains, or dies half way, makes the job fail: shntool does
        /// not notice that.
        bool isDecoderWatched = true;
        SoundComparison::Relation relation = SoundComparison::Relation::Equal;
        /// Whether the output, one of one source, is lossy: it only has to decode to its end, and to be as long.
        bool areOutputsLossy = false;
        /// There are as many outputs as sources, and each has to hold the metadata of the source in its place; otherwise
        /// each has to hold those of all sources.
        bool areOutputsPaired = false;
    };

    struct Verdict {
        /// Why the job has failed: its outputs do not hold what its sources do.
        std::optional<QString> failure;
        /// Why the sources stay although the job did its work.
        std::optional<QString> keeping;
        TaskOutcome::Proof proof = TaskOutcome::Proof::NotNeeded;
        bool wasGivenUp = false;
    };

    explicit SourceRetirement(const QStringList &sources) : m_sources(sources) {}

    [[nodiscard]] const Wishes &wishes() const { return m_wishes; }
    void setWishes(const Wishes &wishes) { m_wishes = wishes; }

    /// Looks at the sources, before the job reads them.
    void rememberSources();
    /// The same sources in the order in which the outputs have their sound. Before `examine`.
    void reorderSources(const QStringList &sources);
    /// The sources may be more than what the outputs have of them: they stay. The first
    /// reason counts.
    void doubt(const QString &reason);
    [[nodiscard]] const std::optional<QString> &doubtReason() const { return m_doubt; }

    /// Looks at what the job has made, with its tags. Always compares the lengths that
    /// headers and sizes tell; before a deletion also whether the sources are the same,
    /// flushes the outputs, and compares metadata and samples.
    [[nodiscard]] Verdict examine(const QStringList &outputs, const SoundComparison::Progress &progress,
                                  const SoundComparison::IsUnwanted &isUnwanted);

    struct Ending {
        TaskOutcome::Original original = TaskOutcome::Original::Untouched;
        QString problem; ///< why a source is there still
    };
    /// Deletes the sources, when that is wanted and the verdict had nothing against it, and
    /// sources and outputs are what they were when they were examined. Once at most.
    [[nodiscard]] Ending retire();

private:
    [[nodiscard]] std::optional<QString> reasonToKeep(const QStringList &outputs) const;
    /// Where nothing is decoded: whether a source is lossy.
    [[nodiscard]] std::optional<QString> lossOfEncoding() const;
    [[nodiscard]] std::optional<QString> lossOfMetadata(const QStringList &outputs) const;
    void compareLengths(const QStringList &outputs, Verdict &verdict) const;

    struct Seen {
        QString path;
        std::optional<struct stat> facts;
    };
    static std::vector<Seen> look(const QStringList &paths);
    [[nodiscard]] static const Seen *firstTouched(const std::vector<Seen> &files);
    /// "it", and the file's name where there are several.
    [[nodiscard]] QString nameOf(const QString &source) const;
    [[nodiscard]] std::optional<QString> changeOfSources() const;

    QStringList m_sources;
    Wishes m_wishes;
    std::vector<Seen> m_sourcesBefore;
    std::vector<Seen> m_outputsExamined;
    std::optional<QString> m_doubt;
    bool m_mayRetire = false;
};

} // namespace nurv
