// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/ExternalPrograms.h"

#include "platform/ChildProcess.h"
#include "platform/ProcessEnvironment.h"
#include "platform/RegularExpression.h"
#include "platform/ResourceFolder.h"

#include <QFileInfo>

#include <algorithm>
#include <chrono>

#include <string.h>

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
    static const QStringList version{u"--version"_s};
    static const std::vector<ExternalProgram> programs{
        {u"flac"_s, false, u"flac"_s, u"encodes, decodes and tests FLAC"_s, version},
        {u"metaflac"_s, false, u"flac"_s, u"reads and writes the metadata of FLAC files"_s, version},
        {u"shntool"_s, true, {}, u"measures, splits, joins, trims and converts lossless files"_s, version},
        {u"wavpack"_s, false, u"wavpack"_s, u"encodes WavPack"_s, version},
        {u"wvunpack"_s, false, u"wavpack"_s, u"decodes and tests WavPack"_s, version},
        {u"lame"_s, false, u"lame"_s, u"encodes MP3"_s, version},
        {u"opusenc"_s, false, u"opus-tools"_s, u"encodes Opus"_s, version},
        {u"sox"_s, false, u"sox"_s, u"resamples and de-emphasises"_s, version},
        {u"cdda2wav"_s, false, u"icedax"_s, u"extracts audio CDs"_s, {u"-version"_s}},
        {u"AtomicParsley"_s, false, u"atomicparsley"_s, u"marks MP4 files as gapless"_s, version},
        {u"mkisofs"_s, true, u"genisoimage"_s, u"makes disc images"_s, {u"-version"_s}},
        {u"shorten"_s, true, {}, u"encodes and decodes Shorten"_s, version},
        {u"ttaenc"_s, true, {}, u"encodes, decodes and tests TTA"_s, version},
        {u"mac"_s, true, {}, u"encodes, decodes and tests Monkey's Audio"_s, version},
        {u"dvda"_s, true, {}, u"authors DVD-Audio discs"_s, version},
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
    static const QStringList bundled = QString::fromLatin1(NURV_BUNDLED_TOOLS).split(u':');
    return bundled.contains(program.name);
}

ProgramStatus checkProgram(const ExternalProgram &program)
{
    return checkProgram(program, toolPath(program.name));
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
    const QString text = u"\"%1\" could not be started: %2\nIt was looked for in the folder %3."_s
                             .arg(file.fileName(), reason, file.path());
    const ExternalProgram *program = findExternalProgram(file.fileName());
    return program ? text + u'\n' + providerText(*program) : text;
}

QString killedProgramText(const QString &name, int signal, const QString &title)
{
    return u"%1 was ended by signal %2 (%3) while working on %4\n"_s.arg(
        name, QString::number(signal), QString::fromLocal8Bit(::strsignal(signal)), title);
}

} // namespace nurv
