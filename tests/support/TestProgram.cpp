// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestProgram.h"

#include "support/ResidentProgram.h"

#include <QProcess>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace nurv::test {

ProgramResult runProgram(const QString &program, const QStringList &arguments, const QByteArray &input)
{
    if (program == u"ffmpeg" || program == u"ffprobe") {
        const auto resident = ResidentProgram::find(QStandardPaths::findExecutable(program));
        if (resident)
            return resident->run(arguments, input);
    }
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    ProgramResult result;
    if (!process.waitForStarted()) {
        result.errors = process.errorString().toUtf8();
        return result;
    }
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60'000)) {
        process.kill();
        process.waitForFinished();
    } else if (process.exitStatus() == QProcess::NormalExit) {
        result.exitStatus = process.exitCode();
    }
    result.output = process.readAllStandardOutput();
    result.errors = process.readAllStandardError();
    return result;
}

} // namespace nurv::test
