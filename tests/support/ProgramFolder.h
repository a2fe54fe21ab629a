// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestFolder.h"

#include <QByteArray>
#include <QString>

namespace nurv::test {

/// The absolute path of the program described at the head of FakeProgram.cpp.
[[nodiscard]] QString fakeProgramPath();

/// A private resource folder: while it lives, NURV_TOOLS names it. Starts empty.
class ProgramFolder {
public:
    ProgramFolder();
    ~ProgramFolder();
    ProgramFolder(const ProgramFolder &) = delete;
    ProgramFolder &operator=(const ProgramFolder &) = delete;

    [[nodiscard]] QString path() const { return m_folder.path(); }
    [[nodiscard]] QString path(const QString &name) const { return m_folder.path(name); }

    /// Puts the real program in. Fails the test when the machine lacks it.
    QString addReal(const QString &name) const;
    /// Puts every real program in that the machine has.
    void addAllReal() const;
    /// Puts a fake in that acts out the script (the steps of FakeProgram.cpp), whatever
    /// its arguments. NURV_FAKE in its environment still wins.
    QString addFake(const QString &name, const QByteArray &script) const;
    /// Puts a fake in that writes its arguments, one call a line and tabs between
    /// them, into the log file, and then becomes the real program.
    QString addLogged(const QString &name, const QString &logPath) const;
    void remove(const QString &name) const;

private:
    TestFolder m_folder;
    QByteArray m_formerFolder;
    bool m_hadFolder;
};

} // namespace nurv::test
