// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/ExternalPrograms.h"

#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "process/ChildProcess.h"
#include "process/ProcessEnvironment.h"
#include "process/ResourceFolder.h"
#include "programs/AtomicParsley.h"
#include "programs/Cdda2wav.h"
#include "programs/Dvda.h"
#include "programs/Flac.h"
#include "programs/Lame.h"
#include "programs/Metaflac.h"
#include "programs/Mkisofs.h"
#include "programs/MonkeysAudio.h"
#include "programs/Opusenc.h"
#include "programs/Shntool.h"
#include "programs/Shorten.h"
#include "programs/Sox.h"
#include "programs/Ttaenc.h"
#include "programs/Wavpack.h"
#include "text/RegularExpression.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include <string.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// A program that waits for something when asked for its version must not hold up
/// the list of the others.
constexpr std::chrono::seconds kVersionLimit{5};

QString versionIn(const QString &output)
{
    static const RegularExpression number(u"\\d+(?:\\.\\d+)+[-\\w]*"_s);
    const QString firstLine = output.section(u'\n', 0, 0);
    const auto match = number.findFirst(firstLine);
    return match ? match->text() : QString();
}

bool isExecutableFile(const QFileInfo &file)
{
    return file.isFile() && file.isExecutable();
}

QString providerText(const ExternalProgram &program)
{
    if (!program.isBundled)
        return u"It is provided by the package \"%1\"."_s.arg(program.package);
    if (!isPartOfThisBuild(program))
        return u"It is not included in this version of Nurv Audio Workbench."_s;
    return u"It is part of Nurv Audio Workbench; installing that again restores it."_s;
}

} // namespace

const std::vector<ExternalProgram> &externalPrograms()
{
    // Of those without a page of their own no tool knows a command line yet.
    static const std::vector<ExternalProgram> programs{
        flac::program(),
        metaflac::program(),
        shntool::program(),
        wavpack::encoder(),
        wavpack::decoder(),
        lame::program(),
        opusenc::program(),
        sox::program(),
        cdda2wav::program(),
        atomicParsley::program(),
        mkisofs::program(),
        shorten::program(),
        ttaenc::program(),
        monkeysAudio::program(),
        dvda::program(),
    };
    return programs;
}

const ExternalProgram *findExternalProgram(const QString &name)
{
    const auto &programs = externalPrograms();
    const auto found = std::find_if(programs.begin(), programs.end(),
                                    [&](const ExternalProgram &program) { return program.name == name; });
    return found == programs.end() ? nullptr : &*found;
}

bool isPartOfThisBuild(const ExternalProgram &program)
{
    static const QStringList bundled = QString::fromLatin1(NURV_BUNDLED_PROGRAMS).split(u':');
    return bundled.contains(program.name);
}

ProgramStatus checkProgram(const ExternalProgram &program)
{
    return checkProgram(program, programPath(program.name));
}

ProgramStatus checkProgram(const ExternalProgram &program, const QString &path)
{
    ProgramStatus status;
    status.path = path;
    const QFileInfo file(status.path);
    if (!file.exists())
        return status;
    status.state = ProgramStatus::State::NotExecutable;
    if (!isExecutableFile(file))
        return status;
    ChildCommand command;
    command.launchPath = status.path;
    command.arguments = program.versionArguments;
    command.environment = processEnvironment();
    const ChildResult result = runChild(command, kVersionLimit);
    if (!result.exit)
        return status;
    status.state = ProgramStatus::State::Found;
    status.version = versionIn(QString::fromUtf8(result.output));
    return status;
}

QString missingProgramText(const QString &launchPath, const QString &reason)
{
    const QFileInfo file(launchPath);
    const QString failure = u"\"%1\" could not be started: %2"_s.arg(file.fileName(), reason);
    // It is there: more files than a command line takes, or no memory.
    if (::access(QFile::encodeName(launchPath).constData(), X_OK) == 0)
        return failure;
    const QString text = failure + u"\nIt was looked for in the folder %1."_s.arg(file.path());
    const ExternalProgram *program = findExternalProgram(file.fileName());
    return program ? text + u'\n' + providerText(*program) : text;
}

void requireProgram(const QString &name)
{
    const QString path = programPath(name);
    if (::access(QFile::encodeName(path).constData(), X_OK) != 0)
        throw NurvFailure(missingProgramText(path, systemErrorText(errno)));
}

QString killedProgramText(const QString &name, int signal, const QString &title)
{
    return u"%1 was ended by signal %2 (%3) while working on %4\n"_s.arg(
        name, QString::number(signal), QString::fromLocal8Bit(::strsignal(signal)), title);
}

} // namespace nurv
