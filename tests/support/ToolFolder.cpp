// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ToolFolder.h"

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

QString fakeToolPath()
{
    return QString::fromLocal8Bit(NURV_FAKE_TOOL);
}

ToolFolder::ToolFolder() : m_formerFolder(qgetenv("NURV_TOOLS")), m_hadFolder(qEnvironmentVariableIsSet("NURV_TOOLS"))
{
    qputenv("NURV_TOOLS", QFile::encodeName(m_folder.path()));
}

ToolFolder::~ToolFolder()
{
    if (m_hadFolder) {
        qputenv("NURV_TOOLS", m_formerFolder);
    } else {
        qunsetenv("NURV_TOOLS");
    }
}

QString ToolFolder::addReal(const QString &name) const
{
    const QFileInfo real(QDir(QString::fromLocal8Bit(NURV_BUILT_TOOLS)), name);
    EXPECT_TRUE(real.isExecutable()) << qPrintable(real.filePath()) << " is missing";
    return m_folder.makeLink(name, real.canonicalFilePath());
}

void ToolFolder::addAllReal() const
{
    const QFileInfoList tools = QDir(QString::fromLocal8Bit(NURV_BUILT_TOOLS)).entryInfoList(QDir::Files);
    for (const QFileInfo &tool : tools) {
        if (tool.isExecutable()) {
            m_folder.makeLink(tool.fileName(), tool.canonicalFilePath());
        }
    }
}

QString ToolFolder::addFake(const QString &name, const QByteArray &script) const
{
    m_folder.write(u'.' + name + u".fake"_s, script);
    return m_folder.makeLink(name, fakeToolPath());
}

QString ToolFolder::addLogged(const QString &name, const QString &logPath) const
{
    const QFileInfo real(QDir(QString::fromLocal8Bit(NURV_BUILT_TOOLS)), name);
    EXPECT_TRUE(real.isExecutable()) << qPrintable(real.filePath()) << " is missing";
    return addFake(name, "log=" + escaped(logPath) + ";exec=" + escaped(real.canonicalFilePath()));
}

void ToolFolder::remove(const QString &name) const
{
    m_folder.remove(name);
}

} // namespace nurv::test
