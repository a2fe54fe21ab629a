// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace nurv::test {

/// A temporary folder, removed with all it holds at the end of the test. Names
/// are relative to it; the paths it gives are absolute and free of links.
/// Whatever cannot be done fails the running test.
class TestFolder {
public:
    TestFolder();

    [[nodiscard]] QString path() const { return m_path; }
    [[nodiscard]] QString path(const QString &name) const;

    /// Writes a file, making the folders above it. Returns its path.
    QString write(const QString &name, const QByteArray &bytes) const;
    QString makeFolder(const QString &name) const;
    QString makeLink(const QString &name, const QString &target) const;
    [[nodiscard]] QByteArray read(const QString &name) const;
    [[nodiscard]] bool exists(const QString &name) const;
    void remove(const QString &name) const;

    /// Every file below the folder, hidden ones included, sorted by character.
    [[nodiscard]] QStringList list() const;

private:
    QTemporaryDir m_folder;
    QString m_path;
};

} // namespace nurv::test
