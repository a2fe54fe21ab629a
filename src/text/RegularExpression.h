// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace nurv {

/// One match of a regular expression: the whole match (group 0) and its groups.
class RegularExpressionMatch {
public:
    struct Group {
        qsizetype start = -1; ///< in UTF-16 units; -1: the group took no part
        QString text;
    };

    explicit RegularExpressionMatch(std::vector<Group> groups) : m_groups(std::move(groups)) {}

    /// The text of a group; empty when it took no part or does not exist.
    [[nodiscard]] QString text(std::size_t group = 0) const;
    [[nodiscard]] bool hasGroup(std::size_t group) const;
    /// Where a group starts, in UTF-16 units; -1 when it took no part.
    [[nodiscard]] qsizetype start(std::size_t group = 0) const;
    /// Where a group ends, in UTF-16 units; -1 when it took no part.
    [[nodiscard]] qsizetype end(std::size_t group = 0) const;
    /// The number of groups, the whole match not counted.
    [[nodiscard]] std::size_t groupCount() const { return m_groups.size() - 1; }

private:
    std::vector<Group> m_groups;
};

/// A compiled regular expression in ICU's syntax. Copies share the compiled
/// pattern; const operations may be called from any thread.
///
/// A search that takes far too long (about a second: a hostile text and a pattern
/// that backtracks) is given up with a line in the log, and counts as no match.
class RegularExpression {
public:
    enum Option : unsigned {
        NoOptions = 0,
        CaseInsensitive = 1,
        DotMatchesLineEnds = 2,
        AnchorsMatchAtLines = 4, ///< ^ and $ match at every line
    };

    explicit RegularExpression(const QString &pattern, unsigned options = NoOptions);

    [[nodiscard]] bool isValid() const { return m_pattern != nullptr; }
    /// What is wrong with the pattern, and where; empty when it is valid.
    [[nodiscard]] const QString &errorText() const { return m_errorText; }

    // An invalid expression matches nothing, replaces nothing and splits nothing.

    /// The match of the whole text.
    [[nodiscard]] std::optional<RegularExpressionMatch> matchWhole(QStringView text) const;
    /// The first match that starts at `from` (in UTF-16 units) or later.
    [[nodiscard]] std::optional<RegularExpressionMatch> findFirst(QStringView text,
                                                                  qsizetype from = 0) const;
    /// Every match, from left to right, without overlaps.
    [[nodiscard]] std::vector<RegularExpressionMatch> findAll(QStringView text) const;
    /// `text` with every match replaced; "$1" in `replacement` stands for group 1,
    /// a backslash makes the next character stand for itself.
    [[nodiscard]] QString replaceAll(QStringView text, const QString &replacement) const;
    /// The pieces between the matches, empty pieces included.
    [[nodiscard]] QStringList split(QStringView text) const;

private:
    struct Pattern;
    std::shared_ptr<const Pattern> m_pattern;
    QString m_errorText;
};

} // namespace nurv
