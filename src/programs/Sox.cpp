// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Sox.h"

#include "text/TextNumbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::sox {

namespace {

/// Without one of these a backslash means itself.
constexpr QStringView kPatternCharacters = u"*?[{";
constexpr QStringView kQuotedCharacters = u"*?[]{},~\\";

bool isPattern(const QString &name)
{
    return std::any_of(name.begin(), name.end(), [](QChar letter) { return kPatternCharacters.contains(letter); });
}

QString quoted(const QString &name)
{
    if (!isPattern(name))
        return name;
    QString pattern;
    for (const QChar letter : name) {
        if (kQuotedCharacters.contains(letter))
            pattern += u'\\';
        pattern += letter;
    }
    return pattern;
}

} // namespace

const ExternalProgram &program()
{
    static const ExternalProgram program{.name = u"sox"_s,
                                         .package = u"sox"_s,
                                         .purpose = u"resamples and de-emphasises"_s,
                                         .leavesHalfMadeOutput = true};
    return program;
}

QStringList deEmphasisArguments(const QString &source, const QString &output)
{
    return {u"-S"_s, quoted(source), output, u"deemph"_s};
}

QString deEmphasisSource(const QStringList &arguments)
{
    const QString &pattern = arguments.at(1);
    if (!isPattern(pattern))
        return pattern;
    QString name;
    for (qsizetype at = 0; at < pattern.size(); ++at) {
        if (pattern.at(at) == u'\\')
            ++at;
        name += pattern.at(at);
    }
    return name;
}

DeEmphasisReport parseDeEmphasis(QStringView chunk)
{
    static constexpr QStringView kProgress = u"In:";
    const QString text = trimWhitespaceAndNewlines(chunk);
    DeEmphasisReport report;
    if (!text.startsWith(kProgress))
        report.text = text;
    else if (const qsizetype percent = text.indexOf(u'%'); percent >= 0)
        report.progress = leadingNumber(QStringView(text).first(percent).sliced(kProgress.size()));
    report.isDone = text.endsWith(u"Done."_s) || text.contains(u"100%"_s);
    return report;
}

QString reasonOfFailure(QStringView text)
{
    QString reason;
    for (const QStringView line : text.split(u'\n')) {
        // "sox FAIL formats: can't open input file ..." and "/path/of/sox FAIL deemph: ...", in pieces.
        const qsizetype mark = line.indexOf(u" FAIL ");
        if (mark < 0)
            continue;
        const QStringView rest = line.sliced(mark + 6);
        const qsizetype colon = rest.indexOf(u':');
        reason = trimWhitespaceAndNewlines(colon < 0 ? rest : rest.sliced(colon + 1));
    }
    return reason;
}

} // namespace nurv::sox
