// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"

#include "support/WaitUntil.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonParseError>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
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

MeasuredResult runMeasured(const TestFolder &folder, const QStringList &arguments)
{
    constexpr unsigned kMostSeconds = 120;
    std::vector<QByteArray> words{QFile::encodeName(nurvPath())};
    for (const QString &argument : arguments)
        words.push_back(QFile::encodeName(argument));
    std::vector<char *> argv;
    for (QByteArray &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    const QByteArray output = QFile::encodeName(folder.path(u"standard output"_s));
    const QByteArray errors = QFile::encodeName(folder.path(u"standard error"_s));
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC;
        const bool isReady = ::dup2(::open(output.constData(), kFlags, 0600), 1) == 1
                             && ::dup2(::open(errors.constData(), kFlags, 0600), 2) == 2;
        ::alarm(kMostSeconds);
        if (isReady)
            ::execv(argv.front(), argv.data());
        ::_exit(99);
    }
    MeasuredResult result;
    int status = 0;
    rusage used{};
    // Of the process and of those that it has waited for.
    EXPECT_EQ(::wait4(child, &status, 0, &used), child);
    EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    if (WIFEXITED(status))
        result.exitStatus = WEXITSTATUS(status);
    result.output = folder.read(u"standard output"_s);
    result.errors = folder.read(u"standard error"_s);
    result.peakBytes = qint64{1024} * used.ru_maxrss;
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    result.processorSeconds = seconds(used.ru_utime) + seconds(used.ru_stime);
    return result;
}

InstalledNurv::InstalledNurv(const TestFolder &folder, const std::optional<QByteArray> &tagsProgram)
    : m_path(folder.path(u"installed/bin/nurv"_s))
{
    folder.makeFolder(u"installed/bin"_s);
    EXPECT_TRUE(QFile::copy(nurvPath(), m_path));
    if (!tagsProgram)
        return;
    const QString script = folder.write(u"installed/lib/nurv/nurv-tags"_s, "#!/bin/bash\n" + *tagsProgram);
    EXPECT_TRUE(QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
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

bool RunningNurv::waitForHeldOpen()
{
    const QDir threads(u"/proc/%1/task"_s.arg(m_process.processId()));
    // A file of this kind has no size to go by.
    const auto textOf = [&threads](const QString &name) {
        QFile file(threads.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    return waitUntil([&] {
        const QStringList ids = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        return std::any_of(ids.begin(), ids.end(), [&](const QString &id) {
            // Asleep until somebody wakes it: a disk is waited for in another state.
            const bool isAsleep = textOf(id + u"/stat"_s).contains(") S ");
            return isAsleep && textOf(id + u"/syscall"_s).startsWith(QByteArray::number(SYS_openat) + ' ');
        });
    });
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
