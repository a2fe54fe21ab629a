// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/KilledProcess.h"

#include "journal/JournalLine.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <initializer_list>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

constexpr int kLimitMs = 20'000;

QByteArray lineOf(const QList<QByteArray> &words)
{
    QList<QByteArrayView> views(words.begin(), words.end());
    switch (views.size()) {
    case 2: return journalLine({views[0], views[1]});
    case 3: return journalLine({views[0], views[1], views[2]});
    case 4: return journalLine({views[0], views[1], views[2], views[3]});
    case 6: return journalLine({views[0], views[1], views[2], views[3], views[4], views[5]});
    case 7: return journalLine({views[0], views[1], views[2], views[3], views[4], views[5], views[6]});
    default: ADD_FAILURE() << "no line has " << views.size() << " words"; return {};
    }
}

} // namespace

void runAndKill(const QStringList &steps)
{
    QProcess process;
    process.start(QString::fromUtf8(NURV_JOURNAL_HOLDER), steps + QStringList{u"kill"_s});
    ASSERT_TRUE(process.waitForFinished(kLimitMs)) << "it does not end";
    ASSERT_EQ(process.exitStatus(), QProcess::CrashExit) << process.readAllStandardError().constData();
}

void runToTheEnd(const QStringList &steps)
{
    QProcess process;
    process.start(QString::fromUtf8(NURV_JOURNAL_HOLDER), steps);
    ASSERT_TRUE(process.waitForFinished(kLimitMs)) << "it does not end";
    ASSERT_EQ(process.exitStatus(), QProcess::NormalExit);
    ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
}

LivingProcess::LivingProcess(const QStringList &steps)
{
    m_process.start(QString::fromUtf8(NURV_JOURNAL_HOLDER), steps + QStringList{u"ready"_s});
    EXPECT_TRUE(m_process.waitForReadyRead(kLimitMs)) << m_process.readAllStandardError().constData();
}

LivingProcess::~LivingProcess()
{
    m_process.kill();
    m_process.waitForFinished();
}

JournalShelf::JournalShelf() : m_former(qgetenv("NURV_STATE"))
{
    qputenv("NURV_STATE", QFile::encodeName(path()));
}

JournalShelf::~JournalShelf()
{
    qputenv("NURV_STATE", m_former);
}

QStringList JournalShelf::journals() const
{
    return QDir(path()).entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
}

QByteArray JournalShelf::read(const QString &journal) const
{
    return m_folder.read(u"state/"_s + journal);
}

void JournalShelf::write(const QString &journal, const QByteArray &bytes) const
{
    m_folder.write(u"state/"_s + journal, bytes);
}

void JournalShelf::changeWord(const QByteArray &verb, qsizetype index, const QByteArray &word) const
{
    int changed = 0;
    for (const QString &journal : journals()) {
        QByteArray bytes;
        for (const QByteArray &line : read(journal).split('\n')) {
            std::optional<QList<QByteArray>> words = journalWords(line);
            if (!words || words->first() != verb) {
                bytes += line + '\n';
                continue;
            }
            words->replace(index, word);
            bytes += lineOf(*words);
            ++changed;
        }
        bytes.chop(1); // what stood behind the last line end was no line
        write(journal, bytes);
    }
    EXPECT_GT(changed, 0) << "no line begins with " << verb.constData();
}

} // namespace nurv::test
