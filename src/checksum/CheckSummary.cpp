// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/CheckSummary.h"

#include "app/PathNames.h"
#include "engine/NURVTask.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// More of a list than anybody reads; all of them are in its report.
constexpr qsizetype kMostFailures = 100;
constexpr qsizetype kLongestText = 200;

QString clipped(const QString &text)
{
    return text.size() <= kLongestText ? text : text.first(kLongestText) + u"..."_s;
}

/// "2 of 3 lists good".
QString share(qsizetype part, qsizetype all, QStringView one, QStringView several)
{
    return u"%1 of %2 %3 good"_s.arg(QString::number(part), QString::number(all), all == 1 ? one : several);
}

} // namespace

void CheckSummary::addMember(int place, const NURVTask &task)
{
    Check check{.name = task.sourcePath().isEmpty() ? task.title() : lastPathComponent(task.sourcePath())};
    if (task.cancelled())
        check.problem = u"canceled"_s;
    else if (task.error())
        check.problem = task.outcome().problem.isEmpty() ? u"not good"_s : task.outcome().problem;
    for (const ListedFile &file : task.outcome().listedFiles) {
        ++check.entries;
        if (file.state == ListedFile::State::Ok)
            continue;
        ++check.wrong;
        if (check.failures.size() < kMostFailures) {
            const QString why = file.detail.isEmpty() ? QString() : u" ("_s + clipped(file.detail) + u')';
            check.failures.append(clipped(file.name) + u": "_s + stateWord(file.state) + why);
        }
    }
    const std::scoped_lock lock(m_lock);
    m_checks.insert_or_assign(place, std::move(check));
}

QString CheckSummary::head() const
{
    const std::scoped_lock lock(m_lock);
    QString lines;
    for (const auto &[place, check] : m_checks) {
        if (check.problem.isEmpty())
            continue;
        lines += check.name + u": "_s + check.problem + u'\n';
        for (const QString &failure : check.failures)
            lines += u"    "_s + failure + u'\n';
        if (const qsizetype more = check.wrong - check.failures.size(); more > 0)
            lines += u"    and %1 more\n"_s.arg(more);
    }
    return lines.isEmpty() ? lines : lines + u'\n';
}

QString CheckSummary::foot() const
{
    const std::scoped_lock lock(m_lock);
    qsizetype good = 0;
    qsizetype entries = 0;
    qsizetype goodEntries = 0;
    for (const auto &[place, check] : m_checks) {
        good += check.problem.isEmpty() ? 1 : 0;
        entries += check.entries;
        goodEntries += check.entries - check.wrong;
    }
    const auto all = static_cast<qsizetype>(m_checks.size());
    if (m_kind == Kind::Files)
        return share(good, all, u"file", u"files") + u'\n';
    return share(good, all, u"list", u"lists") + u"; "_s + share(goodEntries, entries, u"entry", u"entries") + u'\n';
}

} // namespace nurv
