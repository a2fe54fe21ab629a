// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ProgramFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// What a script's step takes as the same text.
QByteArray escaped(const QString &path)
{
    return QFile::encodeName(path).replace('\\', "\\\\").replace(';', "\\;");
}

} // namespace

QString fakeProgramPath()
{
    return QString::fromLocal8Bit(NURV_FAKE_PROGRAM);
}

ProgramFolder::ProgramFolder() : m_formerFolder(qgetenv("NURV_TOOLS")), m_hadFolder(qEnvironmentVariableIsSet("NURV_TOOLS"))
{
    qputenv("NURV_TOOLS", QFile::encodeName(m_folder.path()));
}

ProgramFolder::~ProgramFolder()
{
    if (m_hadFolder) {
        qputenv("NURV_TOOLS", m_formerFolder);
    } else {
        qunsetenv("NURV_TOOLS");
    }
}

QString ProgramFolder::addReal(const QString &name) const
{
    const QFileInfo real(QDir(QString::fromLocal8Bit(NURV_BUILT_PROGRAMS)), name);
    EXPECT_TRUE(real.isExecutable()) << qPrintable(real.filePath()) << " is missing";
    return m_folder.makeLink(name, real.canonicalFilePath());
}

void ProgramFolder::addAllReal() const
{
    const QFileInfoList tools = QDir(QString::fromLocal8Bit(NURV_BUILT_PROGRAMS)).entryInfoList(QDir::Files);
    for (const QFileInfo &tool : tools) {
        if (tool.isExecutable()) {
            m_folder.makeLink(tool.fileName(), tool.canonicalFilePath());
        }
    }
}

QString ProgramFolder::addFake(const QString &name, const QByteArray &script) const
{
    m_folder.write(u'.' + name + u".fake"_s, script);
    return m_folder.makeLink(name, fakeProgramPath());
}

QString ProgramFolder::addLogged(const QString &name, const QString &logPath) const
{
    const QFileInfo real(QDir(QString::fromLocal8Bit(NURV_BUILT_PROGRAMS)), name);
    EXPECT_TRUE(real.isExecutable()) << qPrintable(real.filePath()) << " is missing";
    return addFake(name, "log=" + escaped(logPath) + ";exec=" + escaped(real.canonicalFilePath()));
}

void ProgramFolder::remove(const QString &name) const
{
    m_folder.remove(name);
}

} // namespace nurv::test
