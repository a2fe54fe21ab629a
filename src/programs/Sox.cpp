// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Sox.h"

#include "text/TextNumbers.h"

using namespace Qt::StringLiterals;

namespace nurv::sox {

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
    return {u"-S"_s, source, output, u"deemph"_s};
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
