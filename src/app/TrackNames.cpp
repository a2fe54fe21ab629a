// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TrackNames.h"

#include "app/LinesControl.h"
#include "text/RegularExpressionFinder.h"
#include "text/TextNumbers.h"

#include <QStringView>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// What a line begins and ends with.
struct SetListPatterns {
    /// Month, day and a year of the last or this century.
    RegularExpressionFinder date{u"^(0?[1-9]|1[012])[- /.](0?[1-9]|[12][0-9]|3[01])[- /.](19|20)\\d\\d"_s};
    RegularExpressionFinder leadingNumber{u"^\\(?\\[?[0-9]+\\.?\\)?\\]?"_s};
    RegularExpressionFinder trailingTime{u"\\(?\\[?[0-9]+[\\:\\.][0-9]*([\\:\\.]?[0-9]*)?\\)?\\]?$"_s};
};

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isSeparator(QChar c)
{
    return c == u':' || c == u'.';
}

/// Both patterns of the beginning of a line ask for it: most lines of a text need no search.
bool mayBeginWithNumber(QStringView line)
{
    return !line.isEmpty() && (isDigit(line.front()) || line.front() == u'(' || line.front() == u'[');
}

/// What of the end of a name a time can be made of: digits around at most two separators, within
/// brackets. Empty when there is no digit before a separator. A search in it finds what one in the
/// whole name does, and finds it at once: in a long row of digits the pattern begins at each of them.
QStringView possibleTime(QStringView name)
{
    qsizetype start = name.size();
    const auto stepOver = [&](QChar bracket) {
        if (start > 0 && name[start - 1] == bracket)
            --start;
    };
    const auto stepOverDigits = [&] {
        const qsizetype end = start;
        while (start > 0 && isDigit(name[start - 1]))
            --start;
        return start < end;
    };
    stepOver(u']');
    stepOver(u')');
    stepOverDigits();
    bool hasDigitBeforeSeparator = false;
    for (int separators = 0; separators < 2 && start > 0 && isSeparator(name[start - 1]); ++separators) {
        --start;
        hasDigitBeforeSeparator = stepOverDigits() || hasDigitBeforeSeparator;
    }
    stepOver(u'[');
    stepOver(u'(');
    return hasDigitBeforeSeparator ? name.sliced(start) : QStringView();
}

/// The name without the time at its end. What the time is made of may stand further in front, too:
/// then it is cut off there.
QStringView withoutTrailingTime(QStringView name, RegularExpressionFinder &trailingTime)
{
    const QStringView possible = possibleTime(name);
    if (possible.isEmpty() || !trailingTime.findFirst(possible))
        return name;
    return name.first(name.indexOf(possible.sliced(trailingTime.start())));
}

} // namespace

QString trackNamesOfSetList(const QString &setList, qsizetype mostNames)
{
    SetListPatterns patterns;
    QString names;
    qsizetype count = 0;
    const QString text = withLineFeeds(setList);
    for (const QStringView line : QStringView(text).tokenize(u'\n')) {
        if (count == mostNames)
            break;
        // Until there is a name, no other number counts; that of "(1)" is 0, as the digits are not at the start.
        if (!mayBeginWithNumber(line) || (count == 0 && leadingInteger(line) != 1) || patterns.date.findFirst(line))
            continue;
        if (!patterns.leadingNumber.findFirst(line))
            continue;
        const QStringView name = line.sliced(patterns.leadingNumber.end()).trimmed();
        names += name.isEmpty() ? QStringView(u"(blank)") : withoutTrailingTime(name, patterns.trailingTime);
        names += u'\n';
        ++count;
    }
    return names;
}

QStringList trackNamesIn(const QString &text)
{
    return withLineFeeds(text).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace nurv
