// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Wavpack.h"

#include "text/TextNumbers.h"

using namespace Qt::StringLiterals;

namespace nurv::wavpack {

namespace {

using namespace programOutput;

/// `wvunpack`. Its question is not one of the markers of a failed decoding, but nobody
/// answers it, and what the program then does is not for a job to wait for.
ProgramStage decodingStage(const QStringList &arguments, const std::function<ChunkReport(const QString &chunk)> &parse)
{
    return {.name = decoder().name,
            .arguments = arguments,
            .parse = parse,
            .tellsOfError = asksToOverwrite,
            .asksToOverwrite = asksToOverwrite};
}

} // namespace

const ExternalProgram &encoder()
{
    static const ExternalProgram program{
        .name = u"wavpack"_s, .package = u"wavpack"_s, .purpose = u"encodes WavPack"_s};
    return program;
}

const ExternalProgram &decoder()
{
    static const ExternalProgram program{
        .name = u"wvunpack"_s, .package = u"wavpack"_s, .purpose = u"decodes and tests WavPack"_s};
    return program;
}

QStringList testArguments(const QString &path)
{
    return {u"-v"_s, path};
}

ProgramStage encoding(const QString &level, const QString &input, const QString &output)
{
    return {.name = encoder().name,
            .arguments = {level, input, u"-o"_s, output},
            .parse = parseEncoding,
            .tellsOfError = tellsOfError,
            .asksToOverwrite = asksToOverwrite};
}

ProgramStage decoding(const QString &source, bool overwrite, const QString &output)
{
    QStringList arguments{source};
    if (overwrite)
        arguments << u"-y"_s;
    return decodingStage(arguments << u"-o"_s << output, labelled(parseDecoding, u"Deoding From Wavpack: "_s));
}

ProgramStage decodingToWavForFlac(const QString &source, const QString &wav)
{
    return decodingStage({source, u"-o"_s, wav, u"-y"_s}, labelled(parseDecoding, u"Decoding From Wavpack "_s));
}

ProgramStage decodingToWav(const QString &source, const QString &wav)
{
    ProgramStage stage = decodingStage({source, u"-o"_s, wav, u"-y"_s}, parseDecodingToWav);
    stage.tellsOfError = {};
    return stage;
}

ChunkReport parseEncoding(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = text};
    if (text.contains(u"% done..."_s))
        showFigure(report, text, u"Encoding to Wavpack: "_s);
    return report;
}

ChunkReport parseDecoding(QStringView chunk, const QString &label)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = text + text};
    if (text.contains(u"% done..."_s))
        showFigure(report, text, label);
    return report;
}

ChunkReport parseDecodingToWav(QStringView chunk)
{
    return parseDecoding(chunk, kToWav.toString());
}

bool tellsOfError(QStringView text)
{
    return text.contains(u"couldn't read all samples, file may be corrupt!!"_s) || asksToOverwrite(text);
}

bool asksToOverwrite(QStringView text)
{
    return text.contains(u"overwrite"_s) && text.contains(u"(yes/no/all)?"_s);
}

} // namespace nurv::wavpack
