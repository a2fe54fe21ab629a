// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/FixOrder.h"

#include "programs/Shntool.h"
#include "text/PrintableText.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// More than any line about one file: what is behind it belongs to no name.
constexpr qsizetype kLongestLine = 32'768;

} // namespace

FixOrder::FixOrder(const QStringList &sources)
{
    for (qsizetype i = 0; i < sources.size(); ++i)
        m_places.insert(printableText(sources.at(i)), i);
}

QList<qsizetype> FixOrder::take(QStringView chunk)
{
    QList<qsizetype> begun;
    m_rest += chunk;
    for (qsizetype begin = 0; (begin = m_rest.indexOf(shntool::kFixing)) >= 0;) {
        const qsizetype path = begin + shntool::kFixing.size();
        // A name may hold what ends a path.
        qsizetype end = m_rest.indexOf(shntool::kFixingPathEnd, path);
        auto place = m_places.constEnd();
        for (; end >= 0; end = m_rest.indexOf(shntool::kFixingPathEnd, end + 1)) {
            place = m_places.constFind(m_rest.sliced(path, end - path));
            if (place != m_places.constEnd())
                break;
        }
        if (place != m_places.constEnd()) {
            begun.append(*place);
            m_places.erase(place);
            m_rest.remove(0, end);
        } else if (m_rest.size() - path > kLongestLine || m_rest.indexOf(u"] : "_s, path) >= 0) {
            m_rest.remove(0, path); // it is in the name of an output, or of no file that was given
        } else {
            m_rest.remove(0, begin);
            break;
        }
    }
    if (!m_rest.startsWith(shntool::kFixing))
        m_rest = m_rest.right(shntool::kFixing.size() - 1);
    m_order += begun;
    return begun;
}

std::optional<QList<qsizetype>> FixOrder::order() const
{
    return m_places.isEmpty() ? std::optional(m_order) : std::nullopt;
}

} // namespace nurv
