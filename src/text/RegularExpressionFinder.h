// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <memory>

namespace nurv {

/// A regular expression in ICU's syntax for millions of short texts: a search makes no objects, and
/// gives no more than where the first match is. By the rules of `RegularExpression`; one thread at a time.
class RegularExpressionFinder {
public:
    /// A pattern that is not valid finds nothing.
    explicit RegularExpressionFinder(const QString &pattern);
    ~RegularExpressionFinder();
    RegularExpressionFinder(const RegularExpressionFinder &) = delete;
    RegularExpressionFinder &operator=(const RegularExpressionFinder &) = delete;

    /// Whether there is a match; the first one is where `start` and `end` say, in UTF-16 units.
    [[nodiscard]] bool findFirst(QStringView text);
    [[nodiscard]] qsizetype start() const { return m_start; }
    [[nodiscard]] qsizetype end() const { return m_end; }

private:
    struct Matcher;
    std::unique_ptr<Matcher> m_matcher;
    qsizetype m_start = -1;
    qsizetype m_end = -1;
};

} // namespace nurv
