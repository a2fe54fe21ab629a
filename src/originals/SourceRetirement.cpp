// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/SourceRetirement.h"

#include "app/PathNames.h"
#include "app/Util.h"
#include "base/NurvFailure.h"
#include "files/FileFlush.h"
#include "files/FileStatus.h"
#include "originals/SoundLengthCheck.h"
#include "samples/LossyComparison.h"
#include "samples/SampleStream.h"
#include "tags/MetadataInventory.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

std::vector<SourceRetirement::Seen> SourceRetirement::look(const QStringList &paths)
{
    std::vector<Seen> files;
    for (const QString &path : paths)
        files.push_back({path, statusOf(path)});
    return files;
}

/// Null when all are what they were.
const SourceRetirement::Seen *SourceRetirement::firstTouched(const std::vector<Seen> &files)
{
    const auto touched = std::find_if(files.begin(), files.end(), [](const Seen &file) {
        const std::optional<struct stat> now = statusOf(file.path);
        return !now || !file.facts || !isUntouched(*file.facts, *now);
    });
    return touched == files.end() ? nullptr : &*touched;
}

QString SourceRetirement::nameOf(const QString &source) const
{
    return m_sources.size() > 1 ? lastPathComponent(source) : u"it"_s;
}

std::optional<QString> SourceRetirement::changeOfSources() const
{
    const Seen *const touched = firstTouched(m_sourcesBefore);
    if (!touched && !m_sourcesBefore.empty())
        return std::nullopt;
    return u"%1 has changed since the job began"_s.arg(touched ? nameOf(touched->path) : u"it"_s);
}

void SourceRetirement::reorderSources(const QStringList &sources)
{
    m_sources = sources;
}

void SourceRetirement::rememberSources()
{
    m_sourcesBefore = look(m_sources);
}

void SourceRetirement::doubt(const QString &reason)
{
    if (!m_doubt)
        m_doubt = reason;
}

SourceRetirement::Verdict SourceRetirement::examine(const QStringList &outputs,
                                                    const SoundComparison::Progress &progress,
                                                    const SoundComparison::IsUnwanted &isUnwanted)
{
    m_mayRetire = false;
    Verdict verdict;
    // Of outputs that are longer on purpose, too: none may be shorter.
    if (m_wishes.relation != SoundComparison::Relation::Contained && !outputs.isEmpty())
        compareLengths(outputs, verdict);
    if (verdict.failure || !m_wishes.deletesSources)
        return verdict;

    // Facts first: what changes from here on is seen by `retire`.
    m_outputsExamined = look(outputs);
    verdict.keeping = reasonToKeep(outputs);
    if (verdict.keeping)
        return verdict;
    // With either of these the source stays, but what the job made is looked at all the same.
    verdict.keeping = m_doubt;
    if (!verdict.keeping && !m_wishes.dropsMetadata)
        verdict.keeping = lossOfMetadata(outputs);
    if (!m_wishes.proves) {
        if (verdict.keeping)
            return verdict;
        verdict.keeping = lossOfEncoding();
        // Lengths alone say nothing of what is a stretch of something.
        const bool isMeasured = m_wishes.relation != SoundComparison::Relation::Contained;
        if (!verdict.keeping && (!isMeasured || verdict.proof == TaskOutcome::Proof::NotProven))
            verdict.keeping = u"nothing but the proof could tell whether all of its sound is in the output"_s;
        m_mayRetire = !verdict.keeping;
        return verdict;
    }
    const SoundComparison::Result comparison =
        m_wishes.areOutputsLossy
            ? LossyComparison::compare(m_sources.first(), outputs.first(), progress, isUnwanted)
            : SoundComparison::compare(m_sources, outputs, m_wishes.relation, progress, isUnwanted);
    verdict.wasGivenUp = comparison.wasGivenUp;
    verdict.proof = comparison.isProven ? TaskOutcome::Proof::Proven : TaskOutcome::Proof::NotProven;
    if (!comparison.isProven && !comparison.wasGivenUp)
        verdict.failure = comparison.difference;
    m_mayRetire = comparison.isProven && !verdict.keeping;
    return verdict;
}

void SourceRetirement::compareLengths(const QStringList &outputs, Verdict &verdict) const
{
    const SoundLengthCheck check = m_wishes.areOutputsLossy
                                       ? SoundLengthCheck::ofLossy(m_sources.first(), outputs.first())
                                       : SoundLengthCheck::of(m_sources, outputs);
    verdict.failure = check.fault;
    if (!check.isKnown || !m_wishes.isDecoderWatched)
        verdict.proof = TaskOutcome::Proof::NotProven;
}

std::optional<QString> SourceRetirement::reasonToKeep(const QStringList &outputs) const
{
    if (outputs.isEmpty())
        return u"there is no output"_s;
    for (const QString &output : outputs) {
        const std::optional<struct stat> facts = statusOf(output);
        if (!facts || !S_ISREG(facts->st_mode) || facts->st_size == 0)
            return u"there is no output"_s;
        for (const QString &source : m_sources) {
            const std::optional<struct stat> sourceFacts = statusOf(source);
            if (sourceFacts && isSameFile(*sourceFacts, *facts))
                return u"%1 is the output itself"_s.arg(nameOf(source));
        }
    }
    if (const std::optional<QString> change = changeOfSources())
        return change;
    if (!std::all_of(outputs.begin(), outputs.end(), [](const QString &output) { return flushToDisk(output); }))
        return u"its output may not be on the disk yet"_s;
    return std::nullopt;
}

std::optional<QString> SourceRetirement::lossOfEncoding() const
{
    try {
        for (const QString &source : m_sources) {
            if (!SampleStream::open(source)->isLossless())
                return u"it is lossy: nothing made of it stands for it"_s;
        }
    } catch (const NurvFailure &failure) {
        return u"it cannot be read: %1"_s.arg(failure.reason());
    }
    return std::nullopt;
}

std::optional<QString> SourceRetirement::lossOfMetadata(const QStringList &outputs) const
{
    if (m_wishes.areOutputsPaired && outputs.size() != m_sources.size())
        return u"its tags cannot be compared: there are %1 outputs of %2 sources"_s.arg(outputs.size())
            .arg(m_sources.size());
    try {
        for (qsizetype i = 0; i < m_sources.size(); ++i) {
            const MetadataInventory before = MetadataInventory::of(m_sources.at(i));
            const QStringList holders = m_wishes.areOutputsPaired ? QStringList{outputs.at(i)} : outputs;
            for (const QString &output : holders) {
                if (const auto loss = metadataLost(before, MetadataInventory::of(output), output))
                    return m_sources.size() > 1 ? lastPathComponent(m_sources.at(i)) + u": "_s + *loss : *loss;
            }
        }
    } catch (const NurvFailure &failure) {
        return u"its tags cannot be compared: %1"_s.arg(failure.reason());
    }
    return std::nullopt;
}

SourceRetirement::Ending SourceRetirement::retire()
{
    if (!std::exchange(m_mayRetire, false))
        return {};
    using Original = TaskOutcome::Original;
    if (m_doubt)
        return {Original::Kept, *m_doubt};
    if (const std::optional<QString> change = changeOfSources())
        return {Original::Kept, *change};
    if (m_outputsExamined.empty() || firstTouched(m_outputsExamined))
        return {Original::Kept, u"its output has changed since it was examined"_s};
    Ending ending{Original::Deleted, {}};
    std::size_t removed = 0;
    for (const Seen &source : std::as_const(m_sourcesBefore)) {
        switch (Util::removeFile(source.path, {}, source.facts)) {
        case Util::Removal::Deleted: break;
        case Util::Removal::Trashed: ending.original = Original::Trashed; break;
        case Util::Removal::Stayed: {
            const QString stays = u"%1 could not be removed"_s.arg(nameOf(source.path));
            return {Original::Kept,
                    removed == 0 ? stays
                                 : u"%1, after %2 of %3 were"_s.arg(stays).arg(removed).arg(m_sourcesBefore.size())};
        }
        }
        ++removed;
    }
    return ending;
}

} // namespace nurv
