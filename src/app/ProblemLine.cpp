// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ProblemLine.h"

#include "app/PathNames.h"
#include "engine/NURVTask.h"
#include "text/PrintableText.h"
#include "text/RegularExpression.h"

#include <array>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Expression = RegularExpression;

/// Lines that say nothing about the one file: banners, hints where to read on, what
/// follows from what was said before, and where a program was looked for.
bool isTalk(const QString &line)
{
    static const std::array patterns{
        Expression(u"^(flac|metaflac) \\d+\\."_s),
        Expression(u"^WV?(AVPACK|UNPACK)  "_s),
        Expression(u"^Copyright "_s),
        Expression(u"comes with ABSOLUTELY NO WARRANTY"_s),
        Expression(u"^welcome to redistribute it"_s),
        Expression(u"^Type \"flac\""_s),
        Expression(u"^state = FLAC__"_s),
        Expression(u"^Error: \\d+$"_s),
        Expression(u"^(Compressing|Decompressing|Success|Converting)\\b"_s),
        Expression(u"child (en|de)coder process \\d+ had non-zero exit status"_s),
        Expression(u"^It (was looked for|is provided|is not included|is part|needs the package)"_s),
    };
    for (const Expression &pattern : patterns) {
        if (pattern.findFirst(line))
            return true;
    }
    return false;
}

/// The line without the progress that a program wrote before it on the same line.
QString withoutProgress(QString line)
{
    static const Expression progress(
        u"^\\s*(?:(?:creating|restoring|verifying) .*?\\.\\w+,\\s*|\\d+% done\\.\\.\\.\\s*|Percent Progress: \\d+\\s*"
        "|Progress: [\\d.]+% \\(.*? total\\)\\s*|[^:]+: \\d+% complete(?:, ratio=[\\d.]+)?\\s*)+"_s);
    // Backspaces stand between the figures of a progress that no terminal has shown.
    return progress.replaceAll(line.remove(u'\b'), QString()).simplified();
}

bool removeFront(QString &line, const QString &front)
{
    if (front.isEmpty() || !line.startsWith(front))
        return false;
    line = line.mid(front.size()).trimmed();
    return true;
}

/// The line without who says it about which file.
QString withoutSpeaker(QString line, const QString &sourcePath)
{
    static const Expression speaker(
        u"^(?:(?:flac|metaflac|wavpack|wvunpack|mac|ttaenc|shorten|AtomicParsley|dvda|mkisofs|shntool(?: \\[\\w+\\])?):(?: |$)"
        "|(?:error|warning)[:,] |\\*\\*\\* )"_s,
        Expression::CaseInsensitive);
    const QString name = lastPathComponent(sourcePath);
    for (bool isShorter = true; isShorter;) {
        const QString shorter = speaker.replaceAll(line, QString());
        isShorter = shorter.size() < line.size();
        line = shorter;
        for (const QString &front : {sourcePath + u':', name + u':', sourcePath + u" is "_s, name + u" is "_s}) {
            if (!sourcePath.isEmpty() && removeFront(line, front))
                isShorter = true;
        }
    }
    if (const QString end = u": ["_s + sourcePath + u']'; line.endsWith(end))
        line.chop(end.size());
    return line;
}

/// The line up to its advice to use switches that the user cannot give; empty when it is
/// nothing but that.
QString withoutAdvice(const QString &line, const QStringList &switches)
{
    static const Expression written(u"(?<![\\w./-])--?[A-Za-z][\\w-]*"_s);
    for (const RegularExpressionMatch &match : written.findAll(line)) {
        if (switches.contains(match.text()))
            continue;
        static const Expression advice(u"[,;(.]\\s*(?:or\\s+)?(?:use|try|see|specify|add|run|with|without|unless)\\b"_s,
                                       Expression::CaseInsensitive);
        qsizetype end = -1;
        for (const RegularExpressionMatch &clause : advice.findAll(line)) {
            if (clause.start() < match.start())
                end = clause.start();
        }
        return end < 0 ? QString() : line.left(end).trimmed();
    }
    return line;
}

QString withoutFullStop(QString line)
{
    while (line.endsWith(u'.') || line.endsWith(u'!'))
        line.chop(1);
    return line.trimmed();
}

bool asksToOverwrite(const QString &line)
{
    return (line.contains(u"overwrite "_s) && line.contains(u"(yes/no/all)?"_s))
           || line.contains(u"cannot prompt for overwrite"_s);
}

} // namespace

QString problemLine(const QString &report, const QString &sourcePath, const QStringList &switches)
{
    // What is true of many failures; a reason that stands before it says more.
    static const std::array vague{u"its program made no output"_s, u"Got error code"_s};
    QString reason;
    QString vagueReason;
    // Our own programs show what a terminal would obey in a name, the others do not.
    const QStringList lines = QString(report).replace(printableText(sourcePath), sourcePath).split(u'\n');
    for (const QString &written : lines) {
        if (asksToOverwrite(written)) {
            reason = u"its output exists already"_s;
            continue;
        }
        const QString line = withoutProgress(written);
        // The heading of a report is the source's name alone.
        if (line.isEmpty() || line == sourcePath + u':' || isTalk(line))
            continue;
        const QString said = withoutFullStop(withoutAdvice(withoutSpeaker(line, sourcePath), switches));
        // A report may name the file before each piece of what a program wrote.
        if (said.isEmpty() || isTalk(said))
            continue;
        bool isVague = false;
        for (const QString &words : vague)
            isVague = isVague || said.startsWith(words);
        (isVague ? vagueReason : reason) = said;
    }
    if (!reason.isEmpty())
        return reason;
    return vagueReason.isEmpty() ? u"it failed without a reason"_s : vagueReason;
}

QString reportHead(const NURVTask &task)
{
    const QString report = task.report().trimmed();
    if (!task.error() || report.isEmpty())
        return {};
    const QString &problem = task.outcome().problem;
    const QString reason = problem.isEmpty() ? problemLine(report, task.sourcePath(), {}) : problem;
    const QString firstLine = report.section(u'\n', 0, 0);
    return reason.isEmpty() || firstLine.contains(reason) ? QString() : printableLine(reason) + u"\n\n"_s;
}

} // namespace nurv
