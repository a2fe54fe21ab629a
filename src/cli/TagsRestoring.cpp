// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/TagsRestoring.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "cli/Console.h"
#include "cli/TagsJson.h"
#include "cli/TagsRun.h"
#include "tagging/TagFiles.h"
#include "tagging/TagPreview.h"
#include "text/PrintableText.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

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

/// The file that is meant: among those that are named, if any are, the same one, else the only one of its name.
std::optional<QString> targetOf(const tagsJson::Restoration &restoration, const TagsRun &run, bool areNamed)
{
    if (!areNamed || run.files().contains(restoration.path))
        return restoration.path;
    std::optional<QString> found;
    for (const QString &path : run.files()) {
        if (lastPathComponent(path) != lastPathComponent(restoration.path))
            continue;
        if (found)
            throw NurvFailure(u"several of the files have its name"_s);
        found = path;
    }
    return found;
}

QJsonObject restoreOne(TagsRun &run, const QString &path, const tagsJson::Restoration &restoration, bool isTrial)
{
    const std::optional<TagFormat> format = tagFiles::formatOf(path);
    if (!format || (!restoration.format.isEmpty() && restoration.format != formatWord(path)))
        throw NurvFailure(u"it is of another kind than the file whose tags these are"_s);
    if (!QFileInfo::exists(path))
        throw NurvFailure(u"there is no such file"_s);
    const TagWriting writing{.path = path, .record = restoration.record};
    if (isTrial) {
        const QStringList changes = restoration.stored
                                        ? tagPreview::differences(storedTags::read(*format, path), *restoration.stored)
                                        : tagPreview::changesOf(writing, false);
        QString text = printableLine(run.nameOf(path)) + u'\n';
        for (const QString &change : changes.isEmpty() ? QStringList(u"nothing changes"_s) : changes)
            text += u"    "_s + change + u'\n';
        run.print(text);
        return {{u"type"_s, u"changes"_s},
                {u"file"_s, run.nameOf(path)},
                {u"path"_s, path},
                {u"changes"_s, QJsonArray::fromStringList(changes)}};
    }
    if (restoration.stored)
        storedTags::replace(*format, path, *restoration.stored);
    else
        tagFiles::write(path, restoration.record, false);
    return {{u"type"_s, u"written"_s}, {u"file"_s, run.nameOf(path)}, {u"path"_s, path}};
}

} // namespace

ExitStatus restoreTags(const ParsedArguments &arguments, Console &console)
{
    const std::vector<tagsJson::Restoration> restorations = readBackup(arguments.value(u"from-json"_s));
    TagsRun run(arguments, arguments.operands, console);
    const bool areNamed = !arguments.operands.isEmpty();
    const bool isTrial = arguments.has(u"dry-run"_s);
    QStringList restored;
    for (const tagsJson::Restoration &restoration : restorations) {
        run.forFile(restoration.path, [&]() -> QJsonObject {
            const std::optional<QString> path = targetOf(restoration, run, areNamed);
            if (!path)
                throw NurvFailure(u"it is not among the files that are named"_s);
            restored.append(*path);
            return restoreOne(run, *path, restoration, isTrial);
        });
    }
    for (const QString &path : run.files()) {
        if (!restored.contains(path))
            run.fail(path, u"there are no tags of it in the backup"_s);
    }
    return run.finish(isTrial ? u"looked at, none written"_s : u"written"_s);
}

} // namespace nurv
