// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"

#include "support/WaitUntil.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonParseError>

#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

QString nurvPath()
{
    return QString::fromLocal8Bit(NURV_PROGRAM);
}

ProgramResult runNurv(const QStringList &arguments)
{
    return runProgram(nurvPath(), arguments);
}

QList<QJsonObject> jsonLines(const QByteArray &output)
{
    QList<QJsonObject> objects;
    QList<QByteArray> lines = output.split('\n');
    EXPECT_EQ(lines.takeLast(), QByteArray()) << "the last line has no end";
    for (const QByteArray &line : lines) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line, &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << line.constData();
        EXPECT_TRUE(document.isObject()) << line.constData();
        objects.append(document.object());
    }
    return objects;
}

QList<QByteArray> processesMentioning(const QString &text)
{
    QList<QByteArray> found;
    const QStringList entries = QDir(u"/proc"_s).entryList(QDir::Dirs);
    for (const QString &entry : entries) {
        QFile file(u"/proc/"_s + entry + u"/cmdline"_s);
        if (entry.toInt() == ::getpid() || !file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray commandLine = file.readAll();
        if (commandLine.contains(text.toUtf8()))
            found.append(commandLine);
    }
    return found;
}

RunningNurv::RunningNurv(const QStringList &arguments)
{
    m_process.start(nurvPath(), arguments);
    EXPECT_TRUE(m_process.waitForStarted()) << qPrintable(m_process.errorString());
}

RunningNurv::~RunningNurv()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void RunningNurv::sendSignal(int number)
{
    EXPECT_EQ(::kill(static_cast<pid_t>(m_process.processId()), number), 0);
}

bool RunningNurv::waitForError(const QByteArray &text)
{
    return waitUntil([&] {
        m_errors += m_process.readAllStandardError();
        return m_errors.contains(text);
    });
}

ProgramResult RunningNurv::finish()
{
    ProgramResult result;
    const bool hasEnded = m_process.state() == QProcess::NotRunning || m_process.waitForFinished(20'000);
    EXPECT_TRUE(hasEnded) << "it does not end";
    if (m_process.exitStatus() == QProcess::NormalExit)
        result.exitStatus = m_process.exitCode();
    result.output = m_process.readAllStandardOutput();
    result.errors = m_errors + m_process.readAllStandardError();
    return result;
}

} // namespace nurv::test
