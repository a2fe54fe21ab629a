// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/ShntoolModes.h"

#include "programs/Shntool.h"
#include "text/RegularExpression.h"
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

/// "in/a.flac" for "Trimming [in/a.flac] (0:03.00) ..."; empty for any other line.
QString fileBegunWith(QStringView line)
{
    static const RegularExpression begin(
        u"^(?:Scanning|Trimming|Joining|Padding|Stripping|Splitting|Fixing) \\[(.+?)\\] \\("_s);
    const std::optional<RegularExpressionMatch> match = begin.findFirst(line);
    return match ? match->text(1) : QString();
}

/// What follows from what was said before it.
bool isVague(const QString &problem)
{
    static const RegularExpression vague(
        u"^(?:failed to (?:fix|join|split) files?$|child (?:en|de)coder process|could not open (?:file|output file)"
        "|none of the builtin format modules)"_s);
    return vague.findFirst(problem).has_value();
}

QString inPlainWords(QString problem)
{
    // It advises options that are not the user's to give.
    if (problem.contains(u"cannot prompt for overwrite"_s))
        return u"a file of the name of its output exists already"_s;
    if (problem.startsWith(u"none of the builtin format modules"_s))
        return u"it is no sound file that shntool knows"_s + problem.sliced(problem.indexOf(u": ["_s));
    static const RegularExpression child(u"^child (en|de)coder process \\d+ had non-zero exit status (\\d+)"_s);
    problem = child.replaceAll(problem, u"its $1coder ended with exit status $2"_s);
    static const RegularExpression ending(u"\\s*-- skipping\\.?$|\\.$"_s);
    return ending.replaceAll(problem, QString());
}

/// The text apart from the file that it ends with: "... while processing file: [in/a.wav]".
Problem withoutFile(const QString &text)
{
    static const RegularExpression named(u"(?: while processing(?: file)?| file)?: \\[(.+)\\]$"_s);
    const std::optional<RegularExpressionMatch> match = named.findFirst(text);
    if (!match)
        return {.file = {}, .text = text};
    return {.file = match->text(1), .text = text.first(match->start())};
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

Problem lastProblem(QStringView output)
{
    Problem last;
    bool isTelling = false;
    QString file;
    for (const QStringView line : output.split(u'\n')) {
        if (const QString begun = fileBegunWith(line); !begun.isEmpty())
            file = begun;
        const QString said = problemLines(line).section(u"]: "_s, 1).section(u": "_s, 1);
        if (said.isEmpty() || (isTelling && isVague(said)))
            continue;
        last = withoutFile(inPlainWords(said));
        if (last.file.isEmpty())
            last.file = file;
        isTelling = !isVague(said);
    }
    return last;
}

QString Problem::withFile() const
{
    return file.isEmpty() || text.isEmpty() ? text : u"%1: %2"_s.arg(file.section(u'/', -1), text);
}

} // namespace nurv::shntool
