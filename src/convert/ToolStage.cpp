// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ToolStage.h"

using namespace Qt::StringLiterals;

namespace nurv::toolStages {

namespace {

/// A parser that is told what its status lines begin with.
using LabelledParser = toolOutput::ChunkReport (*)(QStringView chunk, const QString &label);

std::function<toolOutput::ChunkReport(const QString &)> labelled(LabelledParser parse, const QString &label)
{
    return [parse, label](const QString &chunk) { return parse(chunk, label); };
}

/// A stage that decodes for an encoding to Apple Lossless.
ToolStage temporaryDecoding(ToolStage stage)
{
    stage.stopsOnError = false;
    stage.stopsOnCancel = false;
    stage.looksAtExitStatus = false;
    return stage;
}

} // namespace

ToolStage encodeWavpack(const QString &level, const QString &input, const QString &output)
{
    return {.name = u"wavpack"_s,
            .arguments = {level, input, u"-o"_s, output},
            .parse = toolOutput::parseWavpackEncoding,
            .tellsOfError = toolOutput::wavpackTellsOfError};
}

ToolStage encodeTta(const QString &input, const QString &output)
{
    return {.name = u"ttaenc"_s,
            .arguments = {input, u"-o"_s, output},
            .parse = labelled(toolOutput::parseTta, u"Encoding to TTA: "_s),
            .tellsOfError = {},
            .stopsOnError = false,
            .replacesOutput = true};
}

ToolStage encodeMonkeysAudio(const QString &level, const QString &input, const QString &output)
{
    return {.name = u"mac"_s,
            .arguments = {input, output, u"-c"_s + level},
            .parse = labelled(toolOutput::parseMonkeysAudio, u"Encoding to Monkey's Audio"_s),
            .tellsOfError = toolOutput::monkeysAudioTellsOfError,
            .replacesOutput = true};
}

ToolStage encodeFlac(bool verify, const QString &input, const QString &output)
{
    QStringList arguments;
    if (verify)
        arguments << u"-V"_s;
    return {.name = u"flac"_s,
            .arguments = arguments << input << u"-o"_s << output,
            .parse = toolOutput::parseFlacEncoding,
            .tellsOfError = {}};
}

ToolStage decodeWavpack(const QString &source, bool overwrite, const QString &output)
{
    QStringList arguments{source};
    if (overwrite)
        arguments << u"-y"_s;
    // The question is not one of the markers of a failed decoding, but nobody answers it,
    // and what the program then does is not for a job to wait for.
    return {.name = u"wvunpack"_s,
            .arguments = arguments << u"-o"_s << output,
            .parse = labelled(toolOutput::parseWavpackDecoding, u"Deoding From Wavpack: "_s),
            .tellsOfError = toolOutput::asksToOverwrite};
}

ToolStage decodeTta(const QString &source, const QString &output)
{
    return {.name = u"ttaenc"_s,
            .arguments = {source, u"-o"_s, output},
            .parse = labelled(toolOutput::parseTta, u"Decoding From TTA: "_s),
            .tellsOfError = {},
            .stopsOnError = false,
            .replacesOutput = true};
}

ToolStage decodeMonkeysAudio(const QString &source, const QString &output)
{
    return {.name = u"mac"_s,
            .arguments = {source, output, u"-d"_s},
            .parse = labelled(toolOutput::parseMonkeysAudio, u"Decoding from Monkey's Audio"_s),
            .tellsOfError = toolOutput::monkeysAudioTellsOfError,
            .replacesOutput = true};
}

ToolStage encodeShorten(const QString &input, const QString &output)
{
    return {.name = u"shorten"_s,
            .arguments = {input, output},
            .parse =
                [](const QString &chunk) {
                    toolOutput::ChunkReport report;
                    report.results = chunk;
                    return report;
                },
            .tellsOfError = {}};
}

ToolStage wavpackToWavForFlac(const QString &source, const QString &wav)
{
    return {.name = u"wvunpack"_s,
            .arguments = {source, u"-o"_s, wav, u"-y"_s},
            .parse = labelled(toolOutput::parseWavpackDecoding, u"Decoding From Wavpack "_s),
            .tellsOfError = toolOutput::asksToOverwrite};
}

ToolStage shortenToWav(const QString &source, const QString &wav)
{
    return temporaryDecoding({.name = u"shntool"_s,
                              .arguments = {u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"always"_s, u"-o"_s, u"wav"_s,
                                            u"-n"_s, wav, source},
                              .parse = toolOutput::parseShortenToWav,
                              .tellsOfError = {}});
}

ToolStage flacToWav(const QString &source, const QString &wav)
{
    return temporaryDecoding({.name = u"flac"_s,
                              .arguments = {u"-d"_s, source, u"-o"_s, wav, u"-f"_s},
                              .parse = toolOutput::parseFlacToWav,
                              .tellsOfError = {}});
}

ToolStage monkeysAudioToWav(const QString &source, const QString &wav)
{
    return temporaryDecoding({.name = u"mac"_s,
                              .arguments = {source, wav, u"-d"_s},
                              .parse = toolOutput::parseMonkeysAudioToWav,
                              .tellsOfError = toolOutput::monkeysAudioTellsOfError});
}

ToolStage wavpackToWav(const QString &source, const QString &wav)
{
    return temporaryDecoding({.name = u"wvunpack"_s,
                              .arguments = {source, u"-o"_s, wav, u"-y"_s},
                              .parse = toolOutput::parseWavpackToWav,
                              .tellsOfError = {}});
}

ToolStage ttaToWav(const QString &source, const QString &wav)
{
    return temporaryDecoding({.name = u"ttaenc"_s,
                              .arguments = {source, u"-o"_s, wav},
                              .parse = labelled(toolOutput::parseTta, u"Decoding to WAV: "_s),
                              .tellsOfError = {}});
}

} // namespace nurv::toolStages
