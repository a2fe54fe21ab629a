// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "journal/KilledProcess.h"
#include "journal/UnfinishedWork.h"
#include "support/TestFolder.h"

#include <QFile>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

namespace nurv::test {

/// A folder of music with a private folder of journals, and what is found in them.
class JournalTest : public ::testing::Test {
protected:
    /// "verb=path", or with a text or a second path behind a bar.
    [[nodiscard]] QString step(const char *verb, const QString &name) const
    {
        return QString::fromLatin1(verb) + u'=' + folder.path(name);
    }
    [[nodiscard]] QString write(const QString &name, const QString &text) const
    {
        return step("write", name) + u'|' + text;
    }
    [[nodiscard]] QString two(const char *verb, const QString &name, const QString &other) const
    {
        return step(verb, name) + u'|' + folder.path(other);
    }

    /// Each leftover as "plan path", or after a cleaning as "outcome path", in the order found.
    [[nodiscard]] QStringList told(const UnfinishedWork &work) const
    {
        QStringList lines;
        for (const UnfinishedRun &run : work.runs()) {
            for (const Leftover &leftover : run.leftovers)
                lines.append(wordFor(leftover) + u' ' + relative(leftover.path));
        }
        return lines;
    }
    [[nodiscard]] QStringList found() const { return told(UnfinishedWork::find()); }
    [[nodiscard]] QStringList cleaned() const { return told(UnfinishedWork::find().cleanUp()); }
    /// The reason of the only leftover.
    [[nodiscard]] QString reason() const
    {
        const UnfinishedWork work = UnfinishedWork::find();
        if (work.runs().size() != 1 || work.runs().first().leftovers.size() != 1)
            return QStringLiteral("not one");
        return work.runs().first().leftovers.first().reason;
    }
    [[nodiscard]] QStringList sources() const
    {
        QStringList names;
        for (const QString &source : UnfinishedWork::find().sources())
            names.append(relative(QFile::encodeName(source)));
        return names;
    }

    JournalShelf shelf;
    TestFolder folder;

private:
    [[nodiscard]] QString relative(const QByteArray &path) const
    {
        return QFile::decodeName(path).mid(folder.path().size() + 1);
    }
    static QString wordFor(const Leftover &leftover)
    {
        switch (leftover.outcome) {
        case Leftover::Outcome::Removed: return QStringLiteral("removed");
        case Leftover::Outcome::PutBack: return QStringLiteral("back");
        case Leftover::Outcome::Left: return QStringLiteral("left");
        case Leftover::Outcome::Open: break;
        }
        switch (leftover.plan) {
        case Leftover::Plan::Remove: return QStringLiteral("remove");
        case Leftover::Plan::PutBack: return QStringLiteral("put-back");
        case Leftover::Plan::Leave: return QStringLiteral("leave");
        case Leftover::Plan::Wait: break;
        }
        return QStringLiteral("wait");
    }
};

} // namespace nurv::test
