// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Ttaenc.h"

#include "text/TextNumbers.h"

using namespace Qt::StringLiterals;

namespace nurv::ttaenc {

using namespace programOutput;

const ExternalProgram &program()
{
    static const ExternalProgram program{
        .name = u"ttaenc"_s, .isBundled = true, .package = {}, .purpose = u"encodes, decodes and tests TTA"_s};
    return program;
}

QStringList testArguments(const QString &path)
{
    return {u"-t"_s, path};
}

ProgramStage encoding(const QString &input, const QString &output)
{
    return {.name = program().name,
            .arguments = {input, u"-o"_s, output},
            .parse = labelled(parse, u"Encoding to TTA: "_s),
            .stopsOnError = false,
            .replacesOutput = true};
}

ProgramStage decoding(const QString &source, const QString &output)
{
    return {.name = program().name,
            .arguments = {source, u"-o"_s, output},
            .parse = labelled(parse, u"Decoding From TTA: "_s),
            .stopsOnError = false,
            .replacesOutput = true};
}

ProgramStage decodingToWav(const QString &source, const QString &wav)
{
    return {.name = program().name, .arguments = {source, u"-o"_s, wav}, .parse = labelled(parse, kToWav.toString())};
}

ChunkReport parse(QStringView chunk, const QString &label)
{
    static const QString marker = u"Percent Progress: "_s;
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = text + text};
    if (const qsizetype place = text.indexOf(marker); place >= 0)
        showFigure(report, QStringView(text).sliced(place + marker.size()), label);
    return report;
}

} // namespace nurv::ttaenc
