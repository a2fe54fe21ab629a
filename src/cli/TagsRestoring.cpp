// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/TagsRestoring.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "cli/Console.h"
#include "cli/TagsJson.h"
#include "cli/FilesRun.h"
#include "cli/TagsWriting.h"
#include "tagging/TagFiles.h"
#include "tagging/TagPreview.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSet>

#include <cstdio>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qint64 kLongestLine = qint64{512} << 20;

std::vector<tagsJson::Restoration> readBackup(const QString &path)
{
    QFile file(QFileInfo(path).absoluteFilePath());
    const bool isOpen = path == u"-" ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    const auto fail = [&path](const QString &reason) { throw UsageError(u"--from-json %1: %2"_s.arg(path, reason)); };
    if (!isOpen)
        fail(file.errorString());
    std::vector<tagsJson::Restoration> restorations;
    for (int number = 1;; ++number) {
        const QByteArray line = file.readLine(kLongestLine);
        if (line.isEmpty())
            break;
        if (line.trimmed().isEmpty())
            continue;
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line, &error);
        if (!document.isObject())
            fail(u"line %1 is no JSON object"_s.arg(number));
        try {
            if (std::optional<tagsJson::Restoration> restoration = tagsJson::restorationOf(document.object()))
                restorations.push_back(*std::move(restoration));
        } catch (const NurvFailure &failure) {
            fail(u"line %1: %2"_s.arg(number).arg(failure.reason()));
        }
    }
    if (file.error() != QFileDevice::NoError)
        fail(file.errorString());
    if (restorations.empty())
        fail(u"there are no tags in it, as \"nurv tags show --json\" prints them"_s);
    return restorations;
}

/// Which file each entry of a backup is for.
struct Targets {
    std::vector<std::optional<QString>> paths; ///< of each entry; nothing: no file that is named
    QStringList problems;                      ///< of which nothing may be written
};

/// Of the files that are named the same ones, and for the other entries those of the same name; without any named files
/// those of the entries themselves.
Targets targetsOf(const std::vector<tagsJson::Restoration> &restorations, const QStringList &named, bool areNamed)
{
    Targets targets{.paths = std::vector<std::optional<QString>>(restorations.size()), .problems = {}};
    QSet<QString> taken;
    const auto take = [&](std::size_t i, const QString &path) {
        if (taken.contains(path))
            targets.problems.append(u"%1: the backup has the tags of several files for it"_s.arg(path));
        taken.insert(path);
        targets.paths[i] = path;
    };
    for (std::size_t i = 0; i < restorations.size(); ++i) {
        if (!areNamed || named.contains(restorations[i].path))
            take(i, restorations[i].path);
    }
    const QSet<QString> same = taken;
    for (std::size_t i = 0; i < restorations.size(); ++i) {
        QStringList found;
        for (const QString &path : named) {
            if (!targets.paths[i] && !same.contains(path)
                && lastPathComponent(path) == lastPathComponent(restorations[i].path))
                found.append(path);
        }
        if (found.size() > 1)
            targets.problems.append(u"%1: several of the files have its name"_s.arg(restorations[i].path));
        else if (!found.isEmpty())
            take(i, found.first());
    }
    return targets;
}

QJsonObject restoreOne(FilesRun &run, const QString &path, const tagsJson::Restoration &restoration, bool isTrial)
{
    const std::optional<TagFormat> format = tagFiles::formatOf(path);
    if (!format || (!restoration.format.isEmpty() && restoration.format != formatWord(path)))
        throw NurvFailure(u"it is of another kind than the file whose tags these are"_s);
    if (!QFileInfo::exists(path))
        throw NurvFailure(u"there is no such file"_s);
    if (!restoration.stored)
        return tagsWriting::writeOrTell(run, {.path = path, .record = restoration.record}, false, isTrial);
    if (isTrial)
        return run.tellChanges(path, tagPreview::differences(storedTags::read(*format, path), *restoration.stored));
    storedTags::replace(*format, path, *restoration.stored);
    const QStringList differences = tagPreview::differences(*restoration.stored, storedTags::read(*format, path));
    if (!differences.isEmpty())
        throw NurvFailure(u"its tags were written, and are not all as in the backup: "_s + differences.first());
    return {{u"type"_s, u"written"_s}, {u"file"_s, run.nameOf(path)}, {u"path"_s, path}};
}

} // namespace

FilesRun::Page tagsPage()
{
    return {.label = u"Tags"_s, .takes = [](const QString &path) { return tagFiles::formatOf(path).has_value(); }};
}

ExitStatus restoreTags(const ParsedArguments &arguments, Console &console)
{
    const std::vector<tagsJson::Restoration> restorations = readBackup(arguments.value(u"from-json"_s));
    FilesRun run(arguments, arguments.operands, console, tagsPage());
    const bool areNamed = !arguments.operands.isEmpty();
    const bool isTrial = arguments.has(u"dry-run"_s);
    const Targets targets = targetsOf(restorations, run.files(), areNamed);
    if (!targets.problems.isEmpty()) {
        for (const QString &problem : targets.problems)
            run.fail(problem.section(u": "_s, 0, -2), problem.section(u": "_s, -1));
        return run.finish(u"written"_s);
    }
    QStringList restored;
    for (const std::optional<QString> &path : targets.paths) {
        if (path)
            restored.append(*path);
    }
    if (!isTrial)
        run.setJournal(tagFiles::beginJournal(restored));
    for (std::size_t i = 0; i < restorations.size(); ++i) {
        const std::optional<QString> &path = targets.paths[i];
        if (path)
            run.forFile(*path, [&] { return restoreOne(run, *path, restorations[i], isTrial); });
    }
    if (const qsizetype others = static_cast<qsizetype>(restorations.size()) - restored.size(); others > 0)
        run.note(u"the tags of %1 more %2 in the backup are of files that are not named"_s.arg(others).arg(
            others == 1 ? u"file"_s : u"files"_s));
    for (const QString &path : run.files()) {
        if (!restored.contains(path))
            run.fail(path, u"there are no tags of it in the backup"_s);
    }
    return run.finish(isTrial ? u"looked at, none written"_s : u"written"_s);
}

} // namespace nurv
