// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ProblemLine.h"
#include "convert/ToolOutputParsers.h"
#include "FuzzedChoices.h"
#include "platform/DecodeText.h"
#include "platform/Utf8ChunkDecoder.h"

#include <cmath>
#include <cstdlib>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

using namespace nurv;
using nurv::fuzz::FuzzedChoices;

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

void check(const toolOutput::ChunkReport &report)
{
    require(!report.progress || (std::isfinite(*report.progress) && report.status));
}

void parse(QStringView chunk)
{
    using namespace toolOutput;
    check(parseFlacEncoding(chunk));
    check(parseFlacDecoding(chunk));
    check(parseShortenEncoding(chunk));
    check(parseFlacByShntool(chunk, u"SHN"_s));
    check(parseShortenDecoding(chunk));
    check(parseWavpackEncoding(chunk));
    check(parseWavpackDecoding(chunk, u"Label: "_s));
    check(parseTta(chunk, u"Label: "_s));
    check(parseMonkeysAudio(chunk, u"Label"_s));
    check(parseShortenToWav(chunk));
    check(parseFlacToWav(chunk));
    check(parseMonkeysAudioToWav(chunk));
    check(parseWavpackToWav(chunk));
    static_cast<void>(tellsOfDamage(chunk));
    static_cast<void>(wavpackTellsOfError(chunk));
    static_cast<void>(monkeysAudioTellsOfError(chunk));
    require(asOnATerminal(chunk).size() <= chunk.size());
}

} // namespace

/// What a program may write, cut into chunks anywhere. The chunks of a text in UTF-8 are that
/// text again, wherever it is cut.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedChoices choices({data, size});
    const std::size_t cuts = choices.small() % 16;
    const auto lengths = choices.take(cuts);
    FuzzedChoices transcript(choices.rest());
    const auto all = choices.rest();
    const QByteArray bytes(reinterpret_cast<const char *>(all.data()), static_cast<qsizetype>(all.size()));

    Utf8ChunkDecoder decoder;
    QString report;
    const auto give = [&](std::span<const std::uint8_t> chunk) {
        const QString text =
            decoder.decode({reinterpret_cast<const char *>(chunk.data()), static_cast<qsizetype>(chunk.size())});
        parse(text);
        report += text;
    };
    for (const std::uint8_t length : lengths)
        give(transcript.take(length));
    give(transcript.rest());
    if (bytes.isValidUtf8())
        require(report.toUtf8() == bytes);
    parse(report);
    const QString name = report.section(u'\n', 0, 0).left(64);
    require(!problemLine(report, u"/music/"_s + name, {u"--lax"_s}).isEmpty());
    require(!problemLine(report, u"a.wav"_s, {}).contains(u'\n'));
    static_cast<void>(decodeText(bytes));
    return 0;
}
