// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/FileNameCollator.h"

#include "base/Log.h"
#include "text/IcuText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <numeric>
#include <utility>
#include <vector>

#include <unicode/coll.h>

namespace nurv {

namespace {

// ICU gives "C" rules that put capitals first and Qt gives it none at all, so a
// language is named where the user's environment names none.
icu::Locale userLocale()
{
    for (const char *variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        QByteArray name = qgetenv(variable);
        if (name.isEmpty())
            continue;
        name.truncate(std::min(name.size(), name.indexOf('.') < 0 ? name.size() : name.indexOf('.')));
        if (name == "C" || name == "POSIX")
            break;
        const icu::Locale locale(name.constData());
        if (!locale.isBogus())
            return locale;
    }
    return icu::Locale("en", "US");
}

std::unique_ptr<const icu::Collator> makeCollator()
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(userLocale(), status));
    if (U_SUCCESS(status)) {
        collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
        collator->setAttribute(UCOL_STRENGTH, UCOL_SECONDARY, status);
        collator->setAttribute(UCOL_NORMALIZATION_MODE, UCOL_ON, status);
    }
    if (U_FAILURE(status)) {
        qCWarning(textLog, "no collation rules (%s); names are compared plainly",
                  u_errorName(status));
        return nullptr;
    }
    return collator;
}

const icu::Collator *collator()
{
    static const std::unique_ptr<const icu::Collator> shared = makeCollator();
    return shared.get();
}

// The sort keys of a list, one behind the other.
class SortKeys {
public:
    SortKeys(const icu::Collator &rules, const QStringList &texts)
    {
        m_starts.reserve(static_cast<size_t>(texts.size()) + 1);
        std::array<std::uint8_t, 512> shortKey;
        for (const QString &text : texts) {
            m_starts.push_back(m_bytes.size());
            const icu::UnicodeString alias = icuAliasOf(text);
            const auto length = static_cast<size_t>(
                rules.getSortKey(alias, shortKey.data(), static_cast<int32_t>(shortKey.size())));
            if (length <= shortKey.size()) {
                m_bytes.insert(m_bytes.end(), shortKey.begin(),
                               shortKey.begin() + static_cast<std::ptrdiff_t>(length));
            } else {
                m_bytes.resize(m_starts.back() + length);
                rules.getSortKey(alias, m_bytes.data() + m_starts.back(),
                                 static_cast<int32_t>(length));
            }
        }
        m_starts.push_back(m_bytes.size());
    }

    // Every key ends with a zero, so the shorter of two never reads past its end.
    [[nodiscard]] int compare(std::uint32_t left, std::uint32_t right) const
    {
        const size_t length = std::min(m_starts[left + 1] - m_starts[left],
                                       m_starts[right + 1] - m_starts[right]);
        return std::memcmp(m_bytes.data() + m_starts[left], m_bytes.data() + m_starts[right],
                           length);
    }

private:
    std::vector<std::uint8_t> m_bytes;
    std::vector<size_t> m_starts;
};

} // namespace

int FileNameCollator::compare(const QString &left, const QString &right)
{
    if (const icu::Collator *rules = collator()) {
        UErrorCode status = U_ZERO_ERROR;
        const UCollationResult result =
            rules->compare(icuAliasOf(left), icuAliasOf(right), status);
        if (U_SUCCESS(status) && result != UCOL_EQUAL)
            return result == UCOL_LESS ? -1 : 1;
    }
    return QString::compare(left, right);
}

void FileNameCollator::sortPaths(QStringList &paths)
{
    const icu::Collator *rules = collator();
    if (!rules) {
        std::sort(paths.begin(), paths.end());
        return;
    }
    const SortKeys keys(*rules, paths);
    std::vector<std::uint32_t> order(static_cast<size_t>(paths.size()));
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
        const int result = keys.compare(left, right);
        return result != 0 ? result < 0 : paths.at(left) < paths.at(right);
    });
    QStringList sorted;
    sorted.reserve(paths.size());
    for (const std::uint32_t index : order)
        sorted.append(std::move(paths[index]));
    paths = std::move(sorted);
}

} // namespace nurv
