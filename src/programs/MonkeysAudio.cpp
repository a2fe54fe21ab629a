// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/MonkeysAudio.h"

#include "text/TextNumbers.h"

using namespace Qt::StringLiterals;

namespace nurv::monkeysAudio {

using namespace programOutput;

const ExternalProgram &program()
{
    static const ExternalProgram program{
        .name = u"mac"_s, .isBundled = true, .package = {}, .purpose = u"encodes, decodes and tests Monkey's Audio"_s};
    return program;
}

QStringList testArguments(const QString &path)
{
    return {path, u"-v"_s};
}

ProgramStage encoding(const QString &level, const QString &input, const QString &output)
{
    return {.name = program().name,
            .arguments = {input, output, u"-c"_s + level},
            .parse = labelled(parse, u"Encoding to Monkey's Audio"_s),
            .tellsOfError = tellsOfError,
            .replacesOutput = true};
}

ProgramStage decoding(const QString &source, const QString &output)
{
    return {.name = program().name,
            .arguments = {source, output, u"-d"_s},
            .parse = labelled(parse, u"Decoding from Monkey's Audio"_s),
            .tellsOfError = tellsOfError,
            .replacesOutput = true};
}

ProgramStage decodingToWav(const QString &source, const QString &wav)
{
    return {.name = program().name,
            .arguments = {source, wav, u"-d"_s},
            .parse = parseDecodingToWav,
            .tellsOfError = tellsOfError};
}

ChunkReport parse(QStringView chunk, const QString &label)
{
    ChunkReport report{.status = {}, .progress = {}, .results = chunk.toString()};
    if (!chunk.contains(u"Progress: "_s) || !chunk.contains(u'%') || !chunk.contains(u"seconds remaining, "_s))
        return report;
    const QStringView figure = fromFirstDigit(chunk);
    const QStringView percent = before(figure, u"%");
    const qsizetype bracket = figure.indexOf(u" (", percent.size());
    const QStringView rest = bracket < 0 ? QStringView() : fromFirstDigit(figure.sliced(bracket));
    const QStringView seconds = before(rest, u" seconds remaining");
    report.progress = leadingNumber(percent);
    report.status = u"%1: %2%   %3 seconds remaining"_s.arg(label, percent, seconds);
    return report;
}

ChunkReport parseDecodingToWav(QStringView chunk)
{
    ChunkReport report = parse(chunk, u"Decoding to WAV"_s);
    report.results.clear();
    report.repaintsTitle = true;
    return report;
}

bool tellsOfError(QStringView text)
{
    return text.contains(u"Error: 10"_s) || text.contains(u"Error: 2000"_s);
}

} // namespace nurv::monkeysAudio
