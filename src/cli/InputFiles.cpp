// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/InputFiles.h"

#include "app/PathNames.h"
#include "audio/CoreAudioHelper.h"
#include "base/SystemError.h"
#include "files/FileNames.h"

#include <optional>
#include <utility>

#include <errno.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QString reasonFor(const RefusedFile &file)
{
    switch (file.verdict) {
    case FileVerdict::Damaged: return u"damaged: no sound can be found in it"_s;
    case FileVerdict::NotReadable: return systemErrorText(EACCES);
    default: return u"not a file of a kind that this command takes"_s;
    }
}

/// Whether it was passed over in a folder, as files of other kinds are.
bool isSkipped(const RefusedFile &file)
{
    return file.verdict == FileVerdict::OtherKind && !file.isGiven;
}

} // namespace

InputFiles collectInput(const QList<QByteArray> &arguments, const FileArrivals &arrivals, Arrival arrival)
{
    InputFiles result;
    QList<std::optional<QString>> names;
    for (const QByteArray &argument : arguments) {
        names.append(fileNameFromBytes(argument));
        if (names.last() && !names.last()->isEmpty())
            arrival.paths.append(*names.last());
    }
    result.intake = arrivals.search(arrival);
    auto given = result.intake.given.cbegin();
    for (qsizetype index = 0; index < arguments.size(); ++index) {
        const std::optional<QString> &name = names.at(index);
        if (!name) {
            result.refusals.append(u"%1: the name is not valid UTF-8"_s.arg(displayName(arguments.at(index))));
        } else if (name->isEmpty()) {
            result.refusals.append(u"an empty name stands for no file"_s);
        } else if (given != result.intake.given.cend()) {
            if (given->obstacle.isEmpty())
                result.names.add(*name, given->path, given->isFolder);
            else
                result.refusals.append(u"%1: %2"_s.arg(*name, given->obstacle));
            ++given;
        }
    }
    // Only now is it known how the files are called.
    for (const RefusedFile &file : std::as_const(result.intake.refused)) {
        if (isSkippedName(file.path))
            continue;
        const QString shown = result.names.nameOf(file.path);
        if (isSkipped(file)) {
            result.skipped.append(u"%1: skipped, not of a kind that this command takes"_s.arg(shown));
            result.hasSkippedSounds = result.hasSkippedSounds || isSoundName(file.path);
        } else {
            result.refusals.append(u"%1: %2"_s.arg(shown, reasonFor(file)));
        }
    }
    for (const QString &name : std::as_const(result.intake.unreadableNames))
        result.refusals.append(u"%1: the name is not valid UTF-8"_s.arg(result.names.nameOf(name)));
    for (const QString &folder : std::as_const(result.intake.unreadableFolders))
        result.refusals.append(u"%1: the folder cannot be read"_s.arg(result.names.nameOf(folder)));
    for (const QString &file : std::as_const(result.intake.unreachableFiles))
        result.refusals.append(u"%1: the file cannot be reached"_s.arg(result.names.nameOf(file)));
    for (const QString &folder : std::as_const(result.intake.linkedFolders))
        result.skipped.append(u"%1: skipped, a link to a folder"_s.arg(result.names.nameOf(folder)));
    for (const QString &file : std::as_const(result.intake.temporaryFiles))
        result.skipped.append(u"%1: skipped, it has the name of a temporary file"_s.arg(result.names.nameOf(file)));
    // Told above by their names; the tab would tell the kinds alone.
    result.intake.refused.clear();
    result.intake.unreadableNames.clear();
    result.intake.unreadableFolders.clear();
    result.intake.unreachableFiles.clear();
    result.intake.linkedFolders.clear();
    result.intake.temporaryFiles.clear();
    return result;
}

} // namespace nurv
