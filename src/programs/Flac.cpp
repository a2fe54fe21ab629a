// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Flac.h"

#include "text/TextNumbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::flac {

namespace {

using namespace programOutput;

/// "ratio=0.532" from the first "ratio=" on; empty without one.
QStringView ratioIn(QStringView line)
{
    const qsizetype place = line.indexOf(u"ratio="_s);
    return place < 0 ? QStringView() : line.sliced(place);
}

/// Cuts off a second progress figure that follows the ratio within one chunk, with
/// the two places of its digits.
QStringView withoutSecondFigure(QStringView ratio)
{
    const qsizetype percent = ratio.indexOf(u'%');
    return percent < 0 ? ratio : ratio.first(std::max<qsizetype>(percent - 2, 0));
}

ChunkReport parseDecodingAs(QStringView chunk, const QString &label)
{
    const QString line = trimWhitespaceAndNewlines(trimBackspaces(chunk));
    ChunkReport report{.status = {}, .progress = {}, .results = line, .repaintsTitle = true};
    if (line.contains(u"% "_s))
        showFigure(report, line.contains(u": "_s) ? secondPiece(line, u": ") : QStringView(line), label);
    return report;
}

} // namespace

const ExternalProgram &program()
{
    static const ExternalProgram program{
        .name = u"flac"_s, .package = u"flac"_s, .purpose = u"encodes, decodes and tests FLAC"_s, .isRequired = true};
    return program;
}

QStringList encodingArguments(const Encoding &encoding, const QString &source, const QString &output)
{
    QStringList arguments;
    if (encoding.hasNoChannelMap)
        arguments << u"--channel-map=none"_s;
    arguments << (encoding.lax ? u"--lax"_s : u"-%1"_s.arg(encoding.level));
    if (encoding.keepForeignMetadata)
        arguments << u"--keep-foreign-metadata"_s;
    if (encoding.verify)
        arguments << u"-V"_s;
    if (encoding.overwrite)
        arguments << u"-f"_s;
    return arguments << source << u"-o"_s << output;
}

bool replacesOutput(const QStringList &arguments)
{
    return arguments.contains(u"-f"_s);
}

QStringList decodingArguments(const QString &format, bool keepForeignMetadata, bool throughErrors,
                              const QString &source, const QString &output)
{
    QStringList arguments{u"-d"_s};
    if (keepForeignMetadata)
        arguments << u"--keep-foreign-metadata"_s;
    if (throughErrors)
        arguments << u"-F"_s;
    if (format == u"AIFF")
        arguments << u"--force-aiff-format"_s;
    return arguments << source << u"-o"_s << output;
}

QStringList testArguments(const QString &path)
{
    return {u"-t"_s, path};
}

ProgramStage plainEncoding(bool verify, const QString &input, const QString &output)
{
    QStringList arguments;
    if (verify)
        arguments << u"-V"_s;
    return {.name = program().name, .arguments = arguments << input << u"-o"_s << output, .parse = parseEncoding};
}

ProgramStage encoding(const Encoding &encoding, const QString &input, const QString &output)
{
    return {.name = program().name, .arguments = encodingArguments(encoding, input, output), .parse = parseEncoding};
}

ProgramStage decodingToWav(const QString &source, const QString &wav)
{
    return {.name = program().name, .arguments = {u"-d"_s, source, u"-o"_s, wav, u"-f"_s}, .parse = parseDecodingToWav};
}

ProgramStage decodingToWavForOpus(const QString &source, const QString &wav)
{
    ProgramStage stage = decodingToWav(source, wav);
    stage.parse = labelled(parseDecodingAs, u"Decoding to Wav: "_s);
    return stage;
}

ChunkReport parseEncoding(QStringView chunk)
{
    const QString line = trimWhitespaceAndNewlines(trimBackspaces(chunk));
    ChunkReport report{.status = {}, .progress = {}, .results = line, .repaintsTitle = true};
    if (!line.contains(u'%'))
        return report;
    QStringView percent;
    QStringView ratio = ratioIn(line);
    if (line.contains(u": "_s)) {
        percent = before(secondPiece(line, u": "), u"%");
    } else {
        percent = before(line, u"%");
        ratio = withoutSecondFigure(ratio);
    }
    if (percent.isEmpty())
        return report;
    report.status = u"Encoding to Flac: %1% %2"_s.arg(percent, ratio);
    report.progress = leadingNumber(percent);
    return report;
}

ChunkReport parseDecoding(QStringView chunk)
{
    return parseDecodingAs(chunk, u"Decoding Flac: "_s);
}

ChunkReport parseDecodingToWav(QStringView chunk)
{
    return parseDecodingAs(chunk, kToWav.toString());
}

bool tellsOfDamage(QStringView text)
{
    static const QStringList markers{u"*** Got error code"_s, u"MD5 signature mismatch"_s, u"unexpected EOF"_s};
    return std::any_of(markers.begin(), markers.end(), [&](const QString &marker) { return text.contains(marker); });
}

} // namespace nurv::flac
