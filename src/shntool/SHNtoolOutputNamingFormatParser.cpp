// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNtoolOutputNamingFormatParser.h"

#include "settings/SettingsStore.h"

#include <algorithm>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QString kNumber = u"%number"_s;
const QString kName = u"%name"_s;
const QString kTime = u"%time"_s;

/// A pattern in slashes is written without them. A slash at its end takes the character before it along.
QString withoutSlashes(QString pattern)
{
    if (pattern.endsWith(u'/'))
        pattern.chop(2);
    if (pattern.startsWith(u'/'))
        pattern.remove(0, 1);
    return pattern;
}

qsizetype behindBlanks(const QString &text, qsizetype at)
{
    while (at < text.size() && text.at(at).isSpace())
        ++at;
    return at;
}

/// The place of the next blank, or the end.
qsizetype nextBlank(const QString &text, qsizetype at)
{
    const qsizetype blank = text.indexOf(u' ', at);
    return blank < 0 ? text.size() : blank;
}

/// The placeholders of the pattern in their order.
std::vector<QString> placeholdersOf(const QString &pattern)
{
    std::vector<std::pair<qsizetype, QString>> found;
    for (const QString &placeholder : {kNumber, kName, kTime}) {
        if (const qsizetype at = pattern.indexOf(placeholder); at >= 0)
            found.emplace_back(at, placeholder);
    }
    std::sort(found.begin(), found.end());
    std::vector<QString> placeholders;
    for (auto &[at, placeholder] : found)
        placeholders.push_back(std::move(placeholder));
    return placeholders;
}

} // namespace

SHNtoolOutputNamingFormatParser::SHNtoolOutputNamingFormatParser()
    : SHNtoolOutputNamingFormatParser(SettingsStore::instance().string(u"shntoolNamesFormat"_s))
{
}

SHNtoolOutputNamingFormatParser::SHNtoolOutputNamingFormatParser(const QString &pattern) : m_pattern(withoutSlashes(pattern)) {}

QString SHNtoolOutputNamingFormatParser::getFormattedLineWithName(const QString &name, const QString &time,
                                                                  const QString &trackNumber) const
{
    // One after the other: what a name brings in is replaced, too.
    QString line = m_pattern;
    line.replace(kNumber, trackNumber).replace(kName, name).replace(kTime, time);
    return line + u'\n';
}

QString SHNtoolOutputNamingFormatParser::getFormattedTotalLine(const QString &time) const
{
    qsizetype at = 0;
    for (const QString &placeholder : placeholdersOf(m_pattern)) {
        at = behindBlanks(m_pattern, at);
        const qsizetype place = m_pattern.indexOf(placeholder, at);
        // It is glued to one before it, and was skipped with that.
        if (place < 0)
            continue;
        const qsizetype end = nextBlank(m_pattern, place);
        if (placeholder != kTime) {
            at = end;
            continue;
        }
        QString total = m_pattern.sliced(at, place - at) + m_pattern.sliced(place, end - place);
        return total.replace(kTime, time) + u'\n';
    }
    return time + u'\n';
}

} // namespace nurv
