// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>
#include <span>

namespace nurv::fuzz {

/// A folder for what must be read by its path: in memory where the system has such a place,
/// gone when the fuzzer ends. One per process.
class FuzzedFolder {
public:
    static const FuzzedFolder &instance()
    {
        static const FuzzedFolder folder;
        return folder;
    }

    /// Makes the file anew and gives its path. A folder that cannot be written ends the
    /// fuzzer: nothing would be tried any more.
    [[nodiscard]] QString write(const QString &name, std::span<const std::uint8_t> bytes) const
    {
        const QString path = m_folder.filePath(name);
        QFile::remove(path);
        QFile file(path);
        const auto size = static_cast<qsizetype>(bytes.size());
        if (!file.open(QFile::WriteOnly | QFile::NewOnly)
            || file.write(reinterpret_cast<const char *>(bytes.data()), size) != size)
            std::abort();
        return path;
    }

    [[nodiscard]] static QByteArray read(const QString &path)
    {
        QFile file(path);
        if (!file.open(QFile::ReadOnly))
            std::abort();
        return file.readAll();
    }

    /// The names in it, hidden ones too.
    [[nodiscard]] QStringList list() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }

private:
    FuzzedFolder()
        : m_folder(QDir(QStringLiteral("/dev/shm")).exists()
                       ? QStringLiteral("/dev/shm/nurv-fuzz-XXXXXX")
                       : QDir::temp().filePath(QStringLiteral("nurv-fuzz-XXXXXX")))
    {
    }

    QTemporaryDir m_folder;
};

} // namespace nurv::fuzz
