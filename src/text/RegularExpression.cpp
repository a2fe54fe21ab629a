// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/RegularExpression.h"

#include "base/Log.h"
#include "text/IcuText.h"

#include <limits>

#include <unicode/regex.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// In ICU's unit, which is about a millisecond of matching.
constexpr int32_t kTimeLimit = 1000;

QString toQString(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

// One search over one text.
class Search {
public:
    Search(const icu::RegexPattern &pattern, QStringView text) : m_input(icuAliasOf(text))
    {
        if (text.size() > std::numeric_limits<int32_t>::max()) {
            m_status = U_INDEX_OUTOFBOUNDS_ERROR;
            return;
        }
        m_matcher.reset(pattern.matcher(m_input, m_status));
        if (U_SUCCESS(m_status))
            m_matcher->setTimeLimit(kTimeLimit, m_status);
    }
    ~Search()
    {
        if (U_FAILURE(m_status))
            qCWarning(textLog, "regular expression given up: %s", u_errorName(m_status));
    }
    Search(const Search &) = delete;
    Search &operator=(const Search &) = delete;

    bool matchWhole() { return U_SUCCESS(m_status) && m_matcher->matches(m_status) && U_SUCCESS(m_status); }

    bool findFrom(qsizetype from)
    {
        return U_SUCCESS(m_status) && m_matcher->find(from, m_status) && U_SUCCESS(m_status);
    }

    bool findNext() { return U_SUCCESS(m_status) && m_matcher->find(m_status) && U_SUCCESS(m_status); }

    QString replaceAll(QStringView text, const QString &replacement)
    {
        if (U_FAILURE(m_status))
            return text.toString();
        const icu::UnicodeString result = m_matcher->replaceAll(icuAliasOf(replacement), m_status);
        return U_SUCCESS(m_status) ? toQString(result) : text.toString();
    }

    RegularExpressionMatch match()
    {
        std::vector<RegularExpressionMatch::Group> groups;
        for (int32_t group = 0; group <= m_matcher->groupCount(); ++group) {
            const int32_t start = m_matcher->start(group, m_status);
            groups.push_back(start < 0 ? RegularExpressionMatch::Group{}
                                       : RegularExpressionMatch::Group{
                                           start, toQString(m_matcher->group(group, m_status))});
        }
        return RegularExpressionMatch(std::move(groups));
    }

private:
    icu::UnicodeString m_input;
    UErrorCode m_status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> m_matcher;
};

} // namespace

QString RegularExpressionMatch::text(std::size_t group) const
{
    return group < m_groups.size() ? m_groups[group].text : QString();
}

bool RegularExpressionMatch::hasGroup(std::size_t group) const
{
    return start(group) >= 0;
}

qsizetype RegularExpressionMatch::start(std::size_t group) const
{
    return group < m_groups.size() ? m_groups[group].start : -1;
}

qsizetype RegularExpressionMatch::end(std::size_t group) const
{
    return hasGroup(group) ? start(group) + m_groups[group].text.size() : -1;
}

struct RegularExpression::Pattern {
    std::unique_ptr<icu::RegexPattern> compiled;
};

RegularExpression::RegularExpression(const QString &pattern, unsigned options)
{
    uint32_t flags = 0;
    if (options & CaseInsensitive)
        flags |= UREGEX_CASE_INSENSITIVE;
    if (options & DotMatchesLineEnds)
        flags |= UREGEX_DOTALL;
    if (options & AnchorsMatchAtLines)
        flags |= UREGEX_MULTILINE;
    UErrorCode status = U_ZERO_ERROR;
    UParseError where = {};
    std::unique_ptr<icu::RegexPattern> compiled(
        icu::RegexPattern::compile(icuAliasOf(pattern), flags, where, status));
    if (U_FAILURE(status)) {
        m_errorText = u"%1 at line %2, character %3"_s.arg(QString::fromLatin1(u_errorName(status)))
                          .arg(where.line)
                          .arg(where.offset);
        return;
    }
    m_pattern = std::make_shared<const Pattern>(Pattern{std::move(compiled)});
}

std::optional<RegularExpressionMatch> RegularExpression::matchWhole(QStringView text) const
{
    if (!isValid())
        return std::nullopt;
    Search search(*m_pattern->compiled, text);
    if (!search.matchWhole())
        return std::nullopt;
    return search.match();
}

std::optional<RegularExpressionMatch> RegularExpression::findFirst(QStringView text,
                                                                   qsizetype from) const
{
    if (!isValid() || from < 0 || from > text.size())
        return std::nullopt;
    Search search(*m_pattern->compiled, text);
    if (!search.findFrom(from))
        return std::nullopt;
    return search.match();
}

std::vector<RegularExpressionMatch> RegularExpression::findAll(QStringView text) const
{
    std::vector<RegularExpressionMatch> matches;
    if (!isValid())
        return matches;
    Search search(*m_pattern->compiled, text);
    while (search.findNext())
        matches.push_back(search.match());
    return matches;
}

QString RegularExpression::replaceAll(QStringView text, const QString &replacement) const
{
    if (!isValid())
        return text.toString();
    Search search(*m_pattern->compiled, text);
    return search.replaceAll(text, replacement);
}

QStringList RegularExpression::split(QStringView text) const
{
    QStringList pieces;
    qsizetype pieceStart = 0;
    for (const RegularExpressionMatch &match : findAll(text)) {
        pieces.append(text.sliced(pieceStart, match.start() - pieceStart).toString());
        pieceStart = match.end();
    }
    pieces.append(text.sliced(pieceStart).toString());
    return pieces;
}

} // namespace nurv
