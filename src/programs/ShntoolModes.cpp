// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/ShntoolModes.h"

#include "programs/Shntool.h"
#include "text/TextNumbers.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace nurv::shntool {

namespace {

/// Trim, pad and strip.
QStringList editArguments(const QString &mode, const QString &outputFolder, const QString &format)
{
    return {mode, u"-d"_s, outputFolder, u"-o"_s, format, u"-O"_s, u"never"_s};
}

} // namespace

QStringList lengthArguments(const QStringList &sources)
{
    return QStringList{u"len"_s} + sources;
}

QStringList informationArguments(const QStringList &sources)
{
    return QStringList{u"info"_s} + sources;
}

QStringList comparisonArguments(const QStringList &sources)
{
    return QStringList{u"cmp"_s} + sources;
}

QStringList cueSheetArguments(const QStringList &sources)
{
    return QStringList{u"cue"_s, u"-c"_s} + sources;
}

QStringList trimArguments(const QString &outputFolder, const QString &format, const QStringList &sources)
{
    return editArguments(u"trim"_s, outputFolder, format) + sources;
}

QStringList padArguments(const QString &outputFolder, const QString &format, const QString &source)
{
    return editArguments(u"pad"_s, outputFolder, format) << source;
}

QStringList stripArguments(const QString &outputFolder, const QString &format, const QString &source)
{
    return editArguments(u"strip"_s, outputFolder, format) << source;
}

QStringList joinArguments(const QString &outputFolder, const QString &format, const QStringList &sources)
{
    return QStringList{u"join"_s, u"-o"_s, format, u"-n"_s, u"-d"_s, outputFolder, u"-O"_s, u"never"_s} + sources;
}

QStringList splitArguments(const QString &points, const QString &format, const QString &outputFolder,
                           const QString &source)
{
    return {u"split"_s, u"-f"_s, points, u"-o"_s, format, u"-d"_s, outputFolder, source};
}

QStringList editedNames(const QString &source, const QString &ending, const QString &format)
{
    const QFileInfo file(source);
    QStringList names{file.fileName() + ending + u'.' + format};
    if (replacesExtension(file.suffix()))
        names.prepend(file.completeBaseName() + ending + u'.' + format);
    return names;
}

QString joinedName(const QString &format)
{
    return u"joined."_s + format;
}

QString pieceName(int number, const QString &format)
{
    return u"split-track%1.%2"_s.arg(number, 2, 10, QChar(u'0')).arg(format);
}

EditReport parseEdit(QStringView chunk)
{
    EditReport report{.text = trimBackspaces(chunk), .percent = {}, .progress = {}};
    if (const qsizetype percent = report.text.indexOf(u'%'); percent >= 0) {
        report.percent = report.text.first(percent);
        report.progress = leadingNumber(*report.percent);
    }
    return report;
}

bool isMessage(QStringView line)
{
    return line.startsWith(u"shntool ["_s);
}

QString problemLines(QStringView output)
{
    QStringList problems;
    for (const QStringView line : output.split(u'\n')) {
        // A figure may stand before it.
        const qsizetype at = line.indexOf(u"shntool ["_s);
        const QStringView words = at < 0 ? QStringView() : line.sliced(at);
        if (words.contains(u"]: warning: "_s) || words.contains(u"]: error: "_s))
            problems.append(words.trimmed().toString());
    }
    return problems.join(u'\n');
}

QString lastProblem(QStringView output)
{
    const QString line = problemLines(output).section(u'\n', -1);
    // It advises options that are not the user's to give.
    if (line.contains(u"cannot prompt for overwrite"_s))
        return u"a file of the name of its output exists already"_s;
    return line.section(u"]: "_s, 1).section(u": "_s, 1);
}

} // namespace nurv::shntool
