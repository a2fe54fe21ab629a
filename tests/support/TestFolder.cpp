// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestFolder.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace nurv::test {

TestFolder::TestFolder() : m_path(QFileInfo(m_folder.path()).canonicalFilePath())
{
    EXPECT_TRUE(m_folder.isValid()) << qPrintable(m_folder.errorString());
}

QString TestFolder::path(const QString &name) const
{
    return QDir(m_path).filePath(name);
}

QString TestFolder::write(const QString &name, const QByteArray &bytes) const
{
    const QString target = path(name);
    EXPECT_TRUE(QDir().mkpath(QFileInfo(target).path())) << qPrintable(target);
    QFile file(target);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(target) << ": " << qPrintable(file.errorString());
    EXPECT_EQ(file.write(bytes), bytes.size()) << qPrintable(target);
    return target;
}

QString TestFolder::makeFolder(const QString &name) const
{
    EXPECT_TRUE(QDir().mkpath(path(name))) << qPrintable(path(name));
    return path(name);
}

QString TestFolder::makeLink(const QString &name, const QString &target) const
{
    EXPECT_TRUE(QFile::link(target, path(name))) << qPrintable(path(name));
    return path(name);
}

QByteArray TestFolder::read(const QString &name) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path(name)) << ": " << qPrintable(file.errorString());
    return file.readAll();
}

bool TestFolder::exists(const QString &name) const
{
    return QFileInfo::exists(path(name));
}

void TestFolder::remove(const QString &name) const
{
    EXPECT_TRUE(QFile::remove(path(name))) << qPrintable(path(name));
}

QStringList TestFolder::list() const
{
    QStringList names;
    const QDir folder(m_path);
    QDirIterator walk(m_path, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        names.append(folder.relativeFilePath(walk.next()));
    }
    names.sort();
    return names;
}

} // namespace nurv::test
