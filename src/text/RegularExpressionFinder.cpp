// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/RegularExpressionFinder.h"

#include "base/Log.h"
#include "text/IcuText.h"

#include <limits>

#include <unicode/regex.h>

namespace nurv {

namespace {

// In ICU's unit, which is about a millisecond of matching.
constexpr int32_t kTimeLimit = 1000;

} // namespace

/// The matcher refers to the text it was reset to last.
struct RegularExpressionFinder::Matcher {
    explicit Matcher(const QString &pattern) : matcher(icuAliasOf(pattern), 0, status)
    {
        if (U_SUCCESS(status))
            matcher.setTimeLimit(kTimeLimit, status);
    }

    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString input;
    icu::RegexMatcher matcher;
};

RegularExpressionFinder::RegularExpressionFinder(const QString &pattern) : m_matcher(std::make_unique<Matcher>(pattern))
{
    if (U_FAILURE(m_matcher->status))
        qCWarning(textLog, "regular expression not valid: %s", u_errorName(m_matcher->status));
}

RegularExpressionFinder::~RegularExpressionFinder() = default;

bool RegularExpressionFinder::findFirst(QStringView text)
{
    m_start = m_end = -1;
    if (U_FAILURE(m_matcher->status) || text.size() > std::numeric_limits<int32_t>::max())
        return false;
    UErrorCode status = U_ZERO_ERROR;
    m_matcher->input.setTo(false, text.utf16(), static_cast<int32_t>(text.size()));
    m_matcher->matcher.reset(m_matcher->input);
    if (m_matcher->matcher.find(status) && U_SUCCESS(status)) {
        m_start = m_matcher->matcher.start(status);
        m_end = m_matcher->matcher.end(status);
    }
    if (U_FAILURE(status))
        qCWarning(textLog, "regular expression given up: %s", u_errorName(status));
    return m_start >= 0;
}

} // namespace nurv
