// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/SelectedTags.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "base/ParallelLoop.h"
#include "tagging/TagFiles.h"

#include <algorithm>
#include <atomic>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kAtATime = 32;

struct RecordReading {
    std::optional<TagsObject> record;
    QString problem;
};

RecordReading readOne(const QString &path)
{
    try {
        return {.record = tagFiles::read(path), .problem = {}};
    } catch (const NurvFailure &failure) {
        return {.record = std::nullopt, .problem = lastPathComponent(path) + u": "_s + failure.reason()};
    } catch (const std::exception &failure) {
        return {.record = std::nullopt,
                .problem = lastPathComponent(path) + u": "_s + QString::fromUtf8(failure.what())};
    }
}

} // namespace

SelectedTags readSelectedTags(const QStringList &paths, const std::function<bool()> &isUnwanted,
                              const std::function<void(qsizetype)> &noteProgress)
{
    SelectedTags selected;
    for (qsizetype begin = 0; begin < paths.size() && !isUnwanted(); begin += kAtATime) {
        std::vector<RecordReading> readings(static_cast<std::size_t>(std::min(kAtATime, paths.size() - begin)));
        runInParallel(static_cast<qsizetype>(readings.size()), parallelThreads(), isUnwanted,
                      [&](qsizetype i) { readings[static_cast<std::size_t>(i)] = readOne(paths.at(begin + i)); });
        for (RecordReading &reading : readings) {
            if (!reading.problem.isEmpty())
                selected.problems.append(reading.problem);
            if (!reading.record)
                continue;
            if (!selected.pictureFault)
                selected.pictureFault = reading.record->albumArtFault();
            selected.common.add(*reading.record);
            if (paths.size() == 1)
                selected.record = std::move(reading.record);
        }
        if (noteProgress)
            noteProgress(begin + static_cast<qsizetype>(readings.size()));
    }
    if (paths.size() > 1)
        selected.record = selected.common.common();
    return selected;
}

bool areWithoutPicture(const QStringList &paths)
{
    std::atomic<bool> hasPicture = false;
    runInParallel(
        paths.size(), parallelThreads(), [&hasPicture] { return hasPicture.load(); },
        [&](qsizetype i) {
            const RecordReading reading = readOne(paths.at(i));
            if (reading.record && (reading.record->albumArt() || reading.record->albumArtFault()))
                hasPicture = true;
        });
    return !hasPicture;
}

} // namespace nurv
