// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestFolder.h"

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace nurv::test {

/// Lets a process do the steps described at the head of JournalHolder.cpp and then be
/// killed by SIGKILL. Fails the test when it ends otherwise.
void runAndKill(const QStringList &steps);
/// Lets a process do the steps and end by itself.
void runToTheEnd(const QStringList &steps);

/// A process that has done its steps and goes on living until the object goes.
class LivingProcess {
public:
    explicit LivingProcess(const QStringList &steps);
    ~LivingProcess();
    LivingProcess(const LivingProcess &) = delete;
    LivingProcess &operator=(const LivingProcess &) = delete;

private:
    QProcess m_process;
};

/// A private folder for journals: while it lives, NURV_STATE names it.
class JournalShelf {
public:
    JournalShelf();
    ~JournalShelf();
    JournalShelf(const JournalShelf &) = delete;
    JournalShelf &operator=(const JournalShelf &) = delete;

    [[nodiscard]] QString path(const QString &name = {}) const
    {
        return m_folder.path(QStringLiteral("state/") + name);
    }
    /// The names of the journals in it.
    [[nodiscard]] QStringList journals() const;
    [[nodiscard]] QByteArray read(const QString &journal) const;
    void write(const QString &journal, const QByteArray &bytes) const;
    /// Replaces a word, which stands where the second one says, in every line of all journals
    /// that begins with the verb, as its writer would have written it.
    void changeWord(const QByteArray &verb, qsizetype index, const QByteArray &word) const;
    /// As if the system had been started anew since.
    void pretendAnotherBoot() const { changeWord("nurv-journal", 3, "11111111-2222-3333-4444-555555555555"); }

private:
    TestFolder m_folder;
    QByteArray m_former;
};

} // namespace nurv::test
