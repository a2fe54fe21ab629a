// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ProblemLine.h"
#include "FuzzedChoices.h"
#include "programs/AtomicParsley.h"
#include "programs/Flac.h"
#include "programs/Lame.h"
#include "programs/Metaflac.h"
#include "programs/MonkeysAudio.h"
#include "programs/Shntool.h"
#include "programs/Shorten.h"
#include "programs/Ttaenc.h"
#include "programs/Wavpack.h"
#include "text/DecodeText.h"
#include "text/Utf8ChunkDecoder.h"

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

void check(const ChunkReport &report)
{
    require(!report.progress || (std::isfinite(*report.progress) && report.status));
}

void parse(QStringView chunk)
{
    check(flac::parseEncoding(chunk));
    check(flac::parseDecoding(chunk));
    check(flac::parseDecodingToWav(chunk));
    check(shntool::parseToShorten(chunk));
    check(shntool::parseToFlac(chunk, u"SHN"_s));
    check(shntool::parseFromShorten(chunk));
    check(shntool::parseShortenToWav(chunk));
    check(wavpack::parseEncoding(chunk));
    check(wavpack::parseDecoding(chunk, u"Label: "_s));
    check(wavpack::parseDecodingToWav(chunk));
    check(ttaenc::parse(chunk, u"Label: "_s));
    check(monkeysAudio::parse(chunk, u"Label"_s));
    check(monkeysAudio::parseDecodingToWav(chunk));
    check(shorten::parse(chunk));
    check(lame::parse(chunk));
    check(lame::parseByShntool(chunk));
    static_cast<void>(flac::tellsOfDamage(chunk));
    static_cast<void>(wavpack::tellsOfError(chunk));
    static_cast<void>(monkeysAudio::tellsOfError(chunk));
    static_cast<void>(atomicParsley::tellsOfFailedCopy(chunk));
    static_cast<void>(metaflac::valueInOutput(chunk.toString(), u"TITLE"));
    require(programOutput::asOnATerminal(chunk).size() <= chunk.size());
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
